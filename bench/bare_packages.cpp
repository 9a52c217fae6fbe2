#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <cstring>
#include <memory>

#include "bare.h"
#include "platform/handles.h"

namespace bench::bare {
namespace {

using Orvane::InfHandle;

bool EndsWith(const char* text, const char* end) {
  const std::size_t length = std::strlen(text);
  const std::size_t endLength = std::strlen(end);
  return length >= endLength && _stricmp(text + length - endLength, end) == 0;
}

/// The name under which the package was delivered; empty when the Setup API does not tell.
std::string OriginalName(const std::string& path) {
  SYSTEM_INFO system = {};
  GetSystemInfo(&system);
  OSVERSIONINFOEXA windows = {};
  windows.dwOSVersionInfoSize = sizeof(windows);
  GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&windows));
  DWORD size = 0;
  if (!SetupGetInfInformationA(path.c_str(), INFINFO_INF_NAME_IS_ABSOLUTE, nullptr, 0, &size)) return {};
  const std::unique_ptr<char[]> buffer(new char[size]);
  auto* const information = reinterpret_cast<SP_INF_INFORMATION*>(buffer.get());
  if (!SetupGetInfInformationA(path.c_str(), INFINFO_INF_NAME_IS_ABSOLUTE, information, size, &size)) return {};
  SP_ALTPLATFORM_INFO_V2 platform = {};
  platform.cbSize = sizeof(platform);
  platform.Platform = windows.dwPlatformId;
  platform.ProcessorArchitecture = system.wProcessorArchitecture;
  platform.Flags = SP_ALTPLATFORM_FLAGS_VERSION_RANGE;
  platform.MajorVersion = platform.MinorVersion = windows.dwMajorVersion;
  platform.FirstValidatedMajorVersion = platform.FirstValidatedMinorVersion = windows.dwMajorVersion;
  SP_ORIGINAL_FILE_INFO_A original = {};
  original.cbSize = sizeof(original);
  const BOOL known = SetupQueryInfOriginalFileInformationA(
      information, 0, reinterpret_cast<PSP_ALTPLATFORM_INFO>(&platform), &original);
  return known ? original.OriginalInfName : "";
}

/// What one line of a file section says. True for a ".sys" file.
bool ReadFileLine(HINF inf, INFCONTEXT& line, const char* diskSection, const Record& package, Records& records) {
  char text[512] = "";
  if (!SetupGetStringFieldA(&line, 0, text, sizeof(text), nullptr)) return false;
  const bool isSysFile = EndsWith(text, ".sys");
  if (!isSysFile && !EndsWith(text, ".inf")) return false;
  records.push_back(package);
  records.back().name = text;
  if (!SetupGetStringFieldA(&line, 1, text, sizeof(text), nullptr)) {
    records.back().description = package.provider;
    return isSysFile;
  }
  const std::string disk = text;
  SetupGetLineTextA(nullptr, inf, diskSection, disk.c_str(), text, sizeof(text), nullptr);
  records.back().description = text;
  return isSysFile;
}

bool ReadFileSections(HINF inf, const Record& package, Records& records) {
  static const char* const sections[][2] = {{"SourceDisksFiles", "SourceDisksNames"},
                                            {"SourceDisksFiles.amd64", "SourceDisksNames.amd64"},
                                            {"SourceDisksFiles.ia64", "SourceDisksNames.ia64"},
                                            {"SourceDisksFiles.x86", "SourceDisksNames.x86"}};
  bool hasSysFile = false;
  for (const auto& [files, disks] : sections) {
    INFCONTEXT line = {};
    for (BOOL more = SetupFindFirstLineA(inf, files, nullptr, &line); more; more = SetupFindNextLine(&line, &line)) {
      hasSysFile |= ReadFileLine(inf, line, disks, package, records);
    }
  }
  return hasSysFile;
}

/// A field of a line of the section that describes the package; empty when there is none.
std::string VersionField(HINF inf, const char* key, DWORD field) {
  INFCONTEXT line = {};
  char text[512] = "";
  if (SetupFindFirstLineA(inf, "version", key, &line) && SetupGetFieldCount(&line) >= field) {
    SetupGetStringFieldA(&line, field, text, sizeof(text), nullptr);
  }
  return text;
}

}  // namespace

void ReadPackage(const std::string& path, Records& records) {
  const InfHandle inf(SetupOpenInfFileA(path.c_str(), nullptr, INF_STYLE_WIN4, nullptr));
  if (!inf) return;
  Record package;
  package.fileVersion = VersionField(inf.get(), "DriverVer", 2);
  package.provider = VersionField(inf.get(), "Provider", 1);
  if (!ReadFileSections(inf.get(), package, records)) {
    package.name = OriginalName(path);
    package.description = package.provider;
    if (!package.name.empty()) records.push_back(std::move(package));
  }
}

}  // namespace bench::bare
