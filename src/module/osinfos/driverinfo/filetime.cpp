#include <windows.h>
// After windows.h.
#include <sys/timeb.h>

#include <cstdio>
#include <ctime>

#include "packagefiles.h"
#include "platform/logline.h"

namespace Orvane {
namespace {

/// `time` in the form that the run-time library takes, with `minutesEarlier` subtracted from its minutes without
/// normalising.
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

/// How many minutes the machine's clock is ahead of UTC at `time`.
short MinutesEastOfUtc(__time64_t time) {
  struct __timeb64 zone {};
  _ftime64_s(&zone);
  const std::tm* const local = _localtime64(&time);
  const int daylightSaving = local != nullptr ? local->tm_isdst : 0;
  return static_cast<short>(daylightSaving * 60 - zone.timezone);
}

}  // namespace

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
  // On the first day of the epoch, the same instant in UTC may be before the epoch; the day is valid nevertheless.
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
