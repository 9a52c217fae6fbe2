#include "packagefiles.h"

#include <sys/timeb.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <optional>
#include <utility>
#include <vector>

#include "logline.h"
#include "platformtext.h"

namespace Orvane {
namespace {

/// First entry of an image's translation table.
struct Translation {
  WORD language;
  WORD codePage;
};

/// The translation of the last image that had one: images without a table of their own are looked up under it, and the texts
/// listed for them rest on that.
std::optional<Translation> lastTranslation;

/// The version resource of one image. Its content comes from the file and is trusted in nothing: what is read lies inside.
class VersionResource {
 public:
  /// Empty when the image cannot be read or has no version resource.
  explicit VersionResource(const std::string& path) {
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &handle);
    // A resource holds its length in 16 bits, and the platform asks for a few times that; anything larger is a damaged file.
    constexpr DWORD largest = 1 << 20;
    if (size == 0 || size > largest) return;
    m_bytes.resize(size);
    GetFileVersionInfoA(path.c_str(), handle, size, m_bytes.data());
  }

  bool empty() const { return m_bytes.empty(); }

  /// The file's own translation. Neither the result nor the length of the query counts, only what it points to.
  std::optional<Translation> FirstTranslation() const {
    void* entry = nullptr;
    UINT length = 0;
    VerQueryValueA(m_bytes.data(), "\\VarFileInfo\\Translation", &entry, &length);
    Translation translation{};
    if (entry == nullptr || !Copy(entry, translation)) return std::nullopt;
    return translation;
  }

  /// The fixed block, zeros where the resource ends inside it; none when the query gives no length.
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
    return TextWithin(static_cast<const char*>(Query(path)), m_bytes.data(), m_bytes.size());
  }

 private:
  /// What `path` names; null when the query fails or gives no length.
  const void* Query(const char* path) const {
    void* value = nullptr;
    UINT length = 0;
    return VerQueryValueA(m_bytes.data(), path, &value, &length) && length > 0 ? value : nullptr;
  }

  /// Copies what stands at `source`, up to the end of the resource. True when all of `target` was there.
  template <typename T>
  bool Copy(const void* source, T& target) const {
    const std::size_t inside = BytesFrom(static_cast<const char*>(source), m_bytes.data(), m_bytes.size());
    const std::size_t bytes = inside > 0 ? std::min(inside, sizeof(T)) : sizeof(T);
    std::memcpy(&target, source, bytes);
    return bytes == sizeof(T);
  }

  std::vector<char> m_bytes;
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

void PackageFiles::GetDriveInfoFromSysFile(std::string sysFilePath, SysFileInfo& info) {
  DRIVERINFO_LOG(4) << "Enter DriverInfoImp::GetDriveInfoFromSysFile()";
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
  DRIVERINFO_LOG(4) << "Exiting DriverInfoImp::GetDriveInfoFromSysFile()";
}

void PackageFiles::SplitAtSemicolon(const std::string& text, std::string& before, std::string& after) {
  const std::size_t semicolon = text.find(';');
  if (semicolon == std::string::npos) {
    before = after = text;
    return;
  }
  std::string tail = text.substr(semicolon + 1);
  before = text.substr(0, semicolon);
  after = std::move(tail);
}

std::string PackageFiles::FileTimeToText(const FILETIME& fileTime) {
  SYSTEMTIME utc{};
  SYSTEMTIME local{};  // stays zero when a conversion fails, which the first check rejects
  FileTimeToSystemTime(&fileTime, &utc);
  SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);

  std::tm asLocal = BrokenDownTime(local, 0);
  const __time64_t time = _mktime64(&asLocal);
  if (time == -1) {
    DRIVERINFO_LOG(4) << "Invalid datetime encountered...";
    return std::string();
  }
  // On the first day of the epoch the instant in UTC may lie before it; that day is valid all the same.
  const bool firstDay = local.wYear == 1970 && local.wMonth == 1 && local.wDay == 1;
  std::tm asUtc = BrokenDownTime(local, MinutesEastOfUtc(time));
  if (!firstDay && _mktime64(&asUtc) == -1) {
    DRIVERINFO_LOG(4) << "Invalid Data time...";
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
