#include "packagefiles.h"

#include <setupapi.h>
#include <sys/timeb.h>

#include <algorithm>
#include <array>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "drivernames.h"
#include "handles.h"
#include "imagecheck.h"
#include "logline.h"
#include "platformtext.h"

namespace Orvane {
namespace {

using boost::algorithm::iends_with;
using boost::algorithm::istarts_with;

using InfHandle = UniqueHandle<HINF, &SetupCloseInfFile>;

/// Where an INF lists its files, and where it describes the disks that they are on. All are read on every machine: a package
/// for several processors is listed whole. Ordered by name as bytes.
const std::map<std::string, std::string>& FileAndDiskSections() {
  static const std::map<std::string, std::string> sections = {{"SourceDisksFiles", "SourceDisksNames"},
                                                              {"SourceDisksFiles.x86", "SourceDisksNames.x86"},
                                                              {"SourceDisksFiles.amd64", "SourceDisksNames.amd64"},
                                                              {"SourceDisksFiles.ia64", "SourceDisksNames.ia64"}};
  return sections;
}

/// Reads one INF. All texts go through one buffer: what a failing read leaves there is still that of the read before.
class InfReader {
 public:
  /// False when the file cannot be opened as an INF.
  explicit InfReader(const std::string& path)
      : m_inf(SetupOpenInfFileA(path.c_str(), nullptr, INF_STYLE_WIN4, nullptr)) {}

  explicit operator bool() const { return static_cast<bool>(m_inf); }

  /// Field `index` (the first is 1) of the line `key` of the section "version"; none when the line has fewer.
  std::optional<std::string> VersionField(const char* key, DWORD index) {
    INFCONTEXT line{};
    if (!SetupFindFirstLineA(m_inf.get(), "version", key, &line) || SetupGetFieldCount(&line) < index)
      return std::nullopt;
    return Field(line, index);
  }

  /// Field `index` of a line, its key at 0; none when it has no such field or the field does not fit the buffer.
  std::optional<std::string> Field(INFCONTEXT& line, DWORD index) {
    if (!SetupGetStringFieldA(&line, index, m_buffer.data(), Size(), nullptr)) return std::nullopt;
    return Text();
  }

  /// The line of `disk` in the disk section; where there is none, the text that was read before, which is `disk` itself.
  std::string DiskName(const std::string& diskSection, const std::string& disk) {
    SetupGetLineTextA(nullptr, m_inf.get(), diskSection.c_str(), disk.c_str(), m_buffer.data(), Size(), nullptr);
    return Text();
  }

  /// Calls `visit` with each line of a section.
  template <typename Visit>
  void ForEachLine(const std::string& section, Visit visit) {
    INFCONTEXT line{};
    if (!SetupFindFirstLineA(m_inf.get(), section.c_str(), nullptr, &line)) return;
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

/// Appends a record for each driver file that `inf` lists. `package` carries what the records of one package share. True when a
/// ".sys" file was among them.
bool AppendListedFiles(InfReader& inf, const DriverData& package, std::vector<DriverData>& drivers) {
  bool hasSysFile = false;
  for (const auto& [fileSection, diskSection] : FileAndDiskSections()) {
    inf.ForEachLine(fileSection, [&, &disks = diskSection](INFCONTEXT& line) {
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
      driver.description = disk ? inf.DiskName(disks, *disk) : package.provider;
      drivers.push_back(std::move(driver));
    });
  }
  return hasSysFile;
}

/// First entry of an image's translation table.
struct Translation {
  WORD language;
  WORD codePage;
};

/// The translation of the last image that had one: images without a table of their own are looked up under it, and the texts
/// listed for them rest on that.
std::optional<Translation> lastTranslation;

/// Windows survives where the headers and resources of a damaged image lead it. Wine does not, so there an image is looked at before
/// it is asked about. Found out while the library is loaded.
const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;

/// The version resource of one image. Its content comes from the file and is trusted in nothing: what is read lies inside the
/// buffer.
class VersionResource {
 public:
  /// Empty when the image cannot be read or has no version resource.
  explicit VersionResource(const std::string& path) {
    if (isWine && !IsSoundImage(path)) return;
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &handle);
    // No image has room for more; a larger one is damaged.
    constexpr DWORD largest = 64 << 20;
    if (size == 0 || size > largest) return;
    // Zeros behind the resource: the lengths in it are 16-bit numbers of the file, by which the platform finds its way and places
    // the narrow copies of texts. With this room, a damaged resource leads nowhere else.
    constexpr std::size_t room = 1 << 19;
    m_bytes.reset(static_cast<char*>(VirtualAlloc(nullptr, size + room, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    if (!m_bytes) throw std::bad_alloc();
    m_size = size + room;
    GetFileVersionInfoA(path.c_str(), handle, size, m_bytes.get());
  }

  bool empty() const { return m_size == 0; }

  /// The file's own translation. Neither the result nor the length of the query counts, only what it points to.
  std::optional<Translation> FirstTranslation() const {
    void* entry = nullptr;
    UINT length = 0;
    VerQueryValueA(m_bytes.get(), "\\VarFileInfo\\Translation", &entry, &length);
    Translation translation{};
    if (entry == nullptr || !Copy(entry, translation)) return std::nullopt;
    return translation;
  }

  /// The fixed block, zeros where the buffer ends inside it; none when the query gives no length.
  std::optional<VS_FIXEDFILEINFO> FixedBlock() const {
    const void* const block = Query("\\");
    if (block == nullptr) return std::nullopt;
    VS_FIXEDFILEINFO fixed{};
    Copy(block, fixed);
    return fixed;
  }

  /// The text `key` of the string table of `translation`; empty when there is none.
  std::string Text(const Translation& translation, const char* key) const {
    char path[64];
    std::snprintf(path, sizeof(path), "\\StringFileInfo\\%04x%04x\\%s", translation.language, translation.codePage,
                  key);
    return TextWithin(static_cast<const char*>(Query(path)), m_bytes.get(), m_size);
  }

 private:
  struct Free {
    void operator()(char* bytes) const { VirtualFree(bytes, 0, MEM_RELEASE); }
  };

  /// What `path` names; null when the query fails or gives no length.
  const void* Query(const char* path) const {
    void* value = nullptr;
    UINT length = 0;
    return VerQueryValueA(m_bytes.get(), path, &value, &length) && length > 0 ? value : nullptr;
  }

  /// Copies what stands at `source`, up to the end of the buffer. True when all of `target` was there.
  template <typename T>
  bool Copy(const void* source, T& target) const {
    const auto inside = BytesFrom(static_cast<const char*>(source), m_bytes.get(), m_size);
    const std::size_t bytes = std::min(inside.value_or(sizeof(T)), sizeof(T));
    std::memcpy(&target, source, bytes);
    return bytes == sizeof(T);
  }

  // Pages of its own, which are zero and cost nothing until they are touched; most never are.
  std::unique_ptr<char, Free> m_bytes;
  std::size_t m_size = 0;
};

std::string VersionText(DWORD high, DWORD low) {
  char text[150];
  std::snprintf(text, sizeof(text), "%d.%d.%d.%d", HIWORD(high), LOWORD(high), HIWORD(low), LOWORD(low));
  return text;
}

/// `time` as the run-time library takes it, `minutesEarlier` taken off its minutes without normalising.
std::tm BrokenDownTime(const SYSTEMTIME& time, int minutesEarlier) {
  std::tm result{};
  result.tm_year = time.wYear - 1900;
  result.tm_mon = time.wMonth - 1;
  result.tm_mday = time.wDay;
  result.tm_hour = time.wHour;
  result.tm_min = time.wMinute - minutesEarlier;
  result.tm_sec = time.wSecond;
  result.tm_isdst = 0;
  return result;
}

/// Minutes that the machine's clock is ahead of UTC at `time`.
short MinutesEastOfUtc(__time64_t time) {
  struct __timeb64 zone {};
  _ftime64_s(&zone);
  const std::tm* const local = _localtime64(&time);
  const int daylightSaving = local != nullptr ? local->tm_isdst : 0;
  return static_cast<short>(daylightSaving * 60 - zone.timezone);
}

}  // namespace

void PackageFiles::ReadInfPackage(const std::string& infPath, std::vector<DriverData>& drivers) {
  ORVANE_LOG(4) << "Start to parse " << infPath;
  InfReader inf(infPath);
  // The handle of a failed open is not passed on: not every Setup API survives it.
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

void PackageFiles::ScanOemInfCatalogue(std::vector<DriverData>& drivers) {
  static std::vector<DriverData> cache;
  ORVANE_LOG(4) << "Start to list driver files from OemInf.";
  if (!cache.empty()) {
    ORVANE_LOG(4) << "Get data from cache.";
    drivers.insert(drivers.end(), cache.begin(), cache.end());
    return;
  }
  std::array<char, 256> windows{};
  std::string directory;
  if (GetSystemWindowsDirectoryA(windows.data(), static_cast<UINT>(windows.size())) > 0) {
    directory = BoundedText(windows.data(), windows.size()) + "\\inf";
  }
  try {
    for (const auto& entry : boost::filesystem::directory_iterator(boost::filesystem::path(directory))) {
      const std::string name = entry.path().filename().string();
      if (istarts_with(name, "oem") && iends_with(name, ".inf")) ReadInfPackage(entry.path().string(), drivers);
    }
  } catch (const boost::system::system_error& error) {
    // Boost reports some allocations that fail so; they are the caller's to know.
    if (error.code() == make_error_code(boost::system::errc::not_enough_memory)) throw std::bad_alloc();
    // A directory that cannot be walked, or a name outside the ANSI code page: what was found until then is the catalogue.
  }
  // Only a cache that holds something grows, and it is answered from above when it does: the catalogue is read afresh on every
  // call, since packages come and go while the process runs. The other listings are cached.
  if (!cache.empty()) cache.insert(cache.end(), drivers.begin(), drivers.end());
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
  // The structure that the platform takes has room for its own first members at least.
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

void PackageFiles::GetDriveInfoFromSysFile(std::string sysFilePath, SysFileInfo& info) {
  ORVANE_LOG(4) << "Enter DriverInfoImp::GetDriveInfoFromSysFile()";
  SysFileInfo read;
  const VersionResource resource(sysFilePath);
  if (!resource.empty()) {
    if (const auto translation = resource.FirstTranslation()) lastTranslation = translation;
    std::string versions;
    if (const auto fixed = resource.FixedBlock()) {
      versions = VersionText(fixed->dwFileVersionMS, fixed->dwFileVersionLS) + ";" +
                 VersionText(fixed->dwProductVersionMS, fixed->dwProductVersionLS);
    }
    SplitAtSemicolon(versions, read.file_version, read.product_version);
    if (lastTranslation) {
      read.description = resource.Text(*lastTranslation, "FileDescription");
      read.company = resource.Text(*lastTranslation, "CompanyName");
    }
  }
  info = std::move(read);
  ORVANE_LOG(4) << "Exiting DriverInfoImp::GetDriveInfoFromSysFile()";
}

void PackageFiles::SplitAtSemicolon(const std::string& text, std::string& before, std::string& after) {
  Orvane::SplitAtSemicolon(text, before, after);
}

std::string PackageFiles::FileTimeToText(const FILETIME& fileTime) {
  SYSTEMTIME utc{};
  SYSTEMTIME local{};  // stays zero when a conversion fails, which the first check rejects
  FileTimeToSystemTime(&fileTime, &utc);
  SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);

  std::tm asLocal = BrokenDownTime(local, 0);
  const __time64_t time = _mktime64(&asLocal);
  if (time == -1) {
    ORVANE_LOG(4) << "Invalid datetime encountered...";
    return std::string();
  }
  // On the first day of the epoch the instant in UTC may lie before it; that day is valid all the same.
  const bool firstDay = local.wYear == 1970 && local.wMonth == 1 && local.wDay == 1;
  std::tm asUtc = BrokenDownTime(local, MinutesEastOfUtc(time));
  if (!firstDay && _mktime64(&asUtc) == -1) {
    ORVANE_LOG(4) << "Invalid Data time...";
    return std::string();
  }
  return FormatLocalTime(local);
}

std::string PackageFiles::FormatLocalTime(const SYSTEMTIME& localTime) {
  char text[64];
  std::snprintf(text, sizeof(text), "%02u/%02u/%04u ", localTime.wMonth, localTime.wDay, localTime.wYear);
  std::string result = text;
  if (localTime.wHour != 0 || localTime.wMinute != 0 || localTime.wSecond != 0) {
    std::snprintf(text, sizeof(text), "%02u:%02u:%02u", localTime.wHour, localTime.wMinute, localTime.wSecond);
    result += text;
  }
  return result;
}

}  // namespace Orvane
