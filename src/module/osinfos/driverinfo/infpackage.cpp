#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <boost/algorithm/string/predicate.hpp>
#include <optional>
#include <utility>

#include "infsections.h"
#include "loglines.h"
#include "packagefiles.h"
#include "platform/handles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"

namespace Orvane {
namespace {

using boost::algorithm::iends_with;

/// Reads one INF. All texts go through one buffer: after a read that fails, it still holds the text of the previous
/// read.
class InfReader {
 public:
  /// False if the file cannot be opened as an INF.
  explicit InfReader(const std::string& path)
      : m_inf(SetupOpenInfFileA(path.c_str(), nullptr, INF_STYLE_WIN4, nullptr)) {}

  explicit operator bool() const { return static_cast<bool>(m_inf); }

  /// Field `index` (the first is 1) of the line `key` in the section "version"; nullopt if the line has fewer fields.
  std::optional<std::string> VersionField(const char* key, DWORD index) {
    INFCONTEXT line{};
    if (!SetupFindFirstLineA(m_inf.get(), "version", key, &line) || SetupGetFieldCount(&line) < index)
      return std::nullopt;
    return Field(line, index);
  }

  /// Field `index` of a line (0 is its key); nullopt if the line has no such field or the field does not fit into the
  /// buffer.
  std::optional<std::string> Field(INFCONTEXT& line, DWORD index) {
    if (!SetupGetStringFieldA(&line, index, m_buffer.data(), Size(), nullptr)) return std::nullopt;
    return Text();
  }

  /// The name of `disk` in the disk section; if the section has no such line, the text read before, which is `disk`
  /// itself.
  std::string DiskName(const char* diskSection, const std::string& disk) {
    // If this fails, the buffer keeps its text.
    SetupGetLineTextA(nullptr, m_inf.get(), diskSection, disk.c_str(), m_buffer.data(), Size(), nullptr);
    return Text();
  }

  /// Calls `visit` with each line of a section.
  template <typename Visit>
  void ForEachLine(const char* section, Visit visit) {
    INFCONTEXT line{};
    if (!SetupFindFirstLineA(m_inf.get(), section, nullptr, &line)) return;
    do {
      visit(line);
    } while (SetupFindNextLine(&line, &line));
  }

 private:
  DWORD Size() const { return static_cast<DWORD>(m_buffer.size()); }
  std::string Text() const { return BoundedText(m_buffer.data(), m_buffer.size()); }

  InfHandle m_inf;
  std::array<char, 512> m_buffer{};
};

/// Appends a record for each driver file that `inf` lists. `package` has the fields that all records of one package
/// share. True if the package lists a ".sys" file.
bool AppendListedFiles(InfReader& inf, const DriverData& package, std::vector<DriverData>& drivers) {
  bool hasSysFile = false;
  for (const InfFileSection& section : InfFileSections) {
    inf.ForEachLine(section.files, [&](INFCONTEXT& line) {
      const auto name = inf.Field(line, 0);
      if (!name) return;
      const bool isSysFile = iends_with(*name, ".sys");
      if (isSysFile) {
        ORVANE_LOG(4) << "exist sys file: " << *name;
        hasSysFile = true;
      }
      if (!isSysFile && !iends_with(*name, ".inf")) return;
      ORVANE_LOG(4) << "Get driver file: " << *name;
      DriverData driver = package;
      driver.name = *name;
      const auto disk = inf.Field(line, 1);
      driver.description = disk ? inf.DiskName(section.disks, *disk) : package.provider;
      drivers.push_back(std::move(driver));
    });
  }
  return hasSysFile;
}

}  // namespace

void PackageFiles::ReadInfPackage(const std::string& infPath, std::vector<DriverData>& drivers) {
  ORVANE_LOG(4) << loglines::PackageInf << infPath;
  InfReader inf(infPath);
  // Never pass on the handle of a failed open: not every Setup API survives it.
  const auto version = inf ? inf.VersionField("DriverVer", 2) : std::nullopt;
  if (!version) {
    ORVANE_LOG(4) << "Get driver version failed";
    return;
  }
  ORVANE_LOG(4) << "Get driver version: " << *version;
  const auto provider = inf.VersionField("Provider", 1);
  if (!provider) {
    ORVANE_LOG(4) << "Get driver Provider failed";
    return;
  }
  DriverData package;
  package.file_version = *version;
  package.provider = *provider;
  if (AppendListedFiles(inf, package, drivers)) return;
  if (!GetInfOriginalName(infPath, package.name)) return;
  ORVANE_LOG(4) << "add origin inf file:" << package.name;
  package.description = *provider;
  drivers.push_back(std::move(package));
}

bool GetInfOriginalName(const std::string& infPath, std::string& originalName) {
  SYSTEM_INFO system{};
  GetSystemInfo(&system);
  OSVERSIONINFOEXA windows{};
  windows.dwOSVersionInfoSize = sizeof(windows);
#if defined(_MSC_VER)
#pragma warning( \
    suppress : 4996)  // deprecated, but the question is which packages fit the Windows that this process sees
#endif
  if (!GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&windows))) return false;

  DWORD size = 0;
  if (!SetupGetInfInformationA(infPath.c_str(), INFINFO_INF_NAME_IS_ABSOLUTE, nullptr, 0, &size)) return false;
  // The structure that the platform takes has room for at least these first members.
  std::vector<char> information(std::max<std::size_t>(size, sizeof(SP_INF_INFORMATION)));
  auto* const inf = reinterpret_cast<SP_INF_INFORMATION*>(information.data());
  if (!SetupGetInfInformationA(infPath.c_str(), INFINFO_INF_NAME_IS_ABSOLUTE, inf, size, &size)) return false;

  SP_ALTPLATFORM_INFO_V2 platform{};
  platform.cbSize = sizeof(platform);
  platform.Platform = windows.dwPlatformId;
  platform.ProcessorArchitecture = system.wProcessorArchitecture;
  platform.Flags = SP_ALTPLATFORM_FLAGS_VERSION_RANGE;
  // All four are the major version: a package for any release of this Windows qualifies.
  platform.MajorVersion = windows.dwMajorVersion;
  platform.MinorVersion = windows.dwMajorVersion;
  platform.FirstValidatedMajorVersion = windows.dwMajorVersion;
  platform.FirstValidatedMinorVersion = windows.dwMajorVersion;
  SP_ORIGINAL_FILE_INFO_A original{};
  original.cbSize = sizeof(original);
  if (SetupQueryInfOriginalFileInformationA(inf, 0, reinterpret_cast<PSP_ALTPLATFORM_INFO>(&platform), &original) !=
      TRUE) {
    return false;
  }
  originalName = BoundedText(original.OriginalInfName, sizeof(original.OriginalInfName));
  return true;
}

}  // namespace Orvane
