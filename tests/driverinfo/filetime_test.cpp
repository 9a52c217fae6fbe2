#include <gmock/gmock.h>
#include <time.h>

#include <cstdio>
#include <ctime>

#include "importhook.h"
#include "locales.h"
#include "logcapture.h"
#include "packagefiles.h"
#include "scratchmachine.h"

using namespace Orvane;
using test::LogLine;
using test::ThisProgram;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

FILETIME Utc(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0) {
  const SYSTEMTIME time = {year, month, 0, day, hour, minute, second, 0};
  FILETIME fileTime{};
  EXPECT_TRUE(SystemTimeToFileTime(&time, &fileTime));
  return fileTime;
}

/// The test runs on a machine whose zone is the one in its name; the C run-time library would take an entry TZ of the
/// environment for its own and read it in another way.
class ZoneTest : public testing::Test {
 protected:
  explicit ZoneTest(LONG minutesWestOfUtc) : m_minutesWestOfUtc(minutesWestOfUtc) { _tzset(); }
  void SetUp() override {
    TIME_ZONE_INFORMATION zone;
    GetTimeZoneInformation(&zone);
    if (zone.Bias != m_minutesWestOfUtc) GTEST_SKIP() << "the machine's time zone is not the one of this test";
  }

  test::LogCapture log;

 private:
  test::EnvironmentVariable m_noZone{"TZ", ""};
  LONG m_minutesWestOfUtc;
};

struct FileTimeInHelsinki : ZoneTest {
  FileTimeInHelsinki() : ZoneTest(-120) {}
};
struct FileTimeInNewYork : ZoneTest {
  FileTimeInNewYork() : ZoneTest(300) {}
};
struct FileTimeInTonga : ZoneTest {
  FileTimeInTonga() : ZoneTest(-780) {}
};

TEST_F(FileTimeInHelsinki, IsLocalDateAndTime) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2006, 6, 21, 10, 5, 9)), "06/21/2006 13:05:09") << "summer time";
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2006, 12, 21, 11, 5, 9)), "12/21/2006 13:05:09");
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2019, 12, 31, 23, 30, 0)), "01/01/2020 01:30:00")
      << "another day and year";
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST_F(FileTimeInHelsinki, AtMidnightIsTheDateAndABlank) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2019, 3, 6, 22)), "03/07/2019 ");
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2019, 3, 6, 22, 0, 1)), "03/07/2019 00:00:01");
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2019, 3, 6, 22, 1, 0)), "03/07/2019 00:01:00");
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2019, 3, 6, 23, 0, 0)), "03/07/2019 01:00:00");
}

TEST_F(FileTimeInHelsinki, IgnoresFractionsOfASecond) {
  FILETIME time = Utc(2019, 3, 6, 22);
  time.dwLowDateTime += 9'999'999;
  EXPECT_EQ(PackageFiles::FileTimeToText(time), "03/07/2019 ");
}

TEST_F(FileTimeInHelsinki, BeforeTheEpochIsEmpty) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1969, 6, 1, 10)), "");
  EXPECT_EQ(PackageFiles::FileTimeToText(FILETIME{}), "");
  const LogLine invalid{4, "Invalid datetime encountered..."};
  EXPECT_THAT(log.Take(), ElementsAre(invalid, invalid));
}

TEST_F(FileTimeInHelsinki, OnTheFirstDayOfTheEpochIsValidThoughUtcIsBeforeIt) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1970, 1, 1, 0)), "01/01/1970 02:00:00");
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1970, 1, 1, 1, 30)), "01/01/1970 03:30:00");
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST_F(FileTimeInHelsinki, BeforeTheEpochInUtcIsEmptyEvenOnItsFirstDay) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1969, 12, 31, 23, 59, 59)), "") << "01:59:59 of the first day";
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{4, "Invalid datetime encountered..."}));
}

TEST_F(FileTimeInNewYork, IsLocalDateAndTime) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2006, 6, 21, 17, 5, 9)), "06/21/2006 13:05:09") << "summer time";
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2006, 12, 21, 18, 5, 9)), "12/21/2006 13:05:09");
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST_F(FileTimeInNewYork, IsValidFromTheEpochOn) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1970, 1, 1, 5)), "01/01/1970 ");
}

// Thirteen hours east of UTC, twice the offset reaches into the second day.
TEST_F(FileTimeInTonga, WithinTwiceTheOffsetAfterTheEpochIsEmpty) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1970, 1, 1, 12)), "") << "01:00 of the second day";
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1970, 1, 1, 12, 59, 59)), "") << "01:59:59 of the second day";
  const LogLine invalid{4, "Invalid Data time..."};
  EXPECT_THAT(log.Take(), ElementsAre(invalid, invalid));
}

TEST_F(FileTimeInTonga, IsValidFromTwiceTheOffsetAfterTheEpochOnAndOnTheFirstDay) {
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1970, 1, 1, 13)), "01/02/1970 02:00:00");
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(1970, 1, 1, 10, 30)), "01/01/1970 23:30:00");
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST_F(FileTimeInHelsinki, ThatCannotBeConvertedIsEmpty) {
  HOOK(convert, ThisProgram(), SystemTimeToTzSpecificLocalTime, [](auto...) { return FALSE; });
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2006, 6, 21)), "");
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{4, "Invalid datetime encountered..."}));
}

TEST_F(FileTimeInHelsinki, BeyondTheCalendarOfTheSystemIsEmpty) {
  EXPECT_EQ(PackageFiles::FileTimeToText(FILETIME{0xFFFFFFFF, 0xFFFFFFFF}), "");
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{4, "Invalid datetime encountered..."}));
}

TEST_F(FileTimeInHelsinki, ThatTheRunTimeLibraryCannotHoldIsEmpty) {
  HOOK(make, ThisProgram(), _mktime64, [](std::tm*) -> __time64_t { return -1; });
  EXPECT_EQ(PackageFiles::FileTimeToText(Utc(2006, 6, 21)), "");
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{4, "Invalid datetime encountered..."}));
}

TEST_F(FileTimeInHelsinki, IsCheckedOnceAsLocalAndOnceAsUtc) {
  std::vector<std::string> checked;
  HOOK(make, ThisProgram(), _mktime64, [&](std::tm* time) {
    char text[100];
    std::snprintf(text, sizeof(text), "%d-%d-%d %d:%d:%d dst %d", time->tm_year, time->tm_mon, time->tm_mday,
                  time->tm_hour, time->tm_min, time->tm_sec, time->tm_isdst);
    checked.emplace_back(text);
    return make.Real(time);
  });
  PackageFiles::FileTimeToText(Utc(2006, 12, 21, 11, 5, 9));
  PackageFiles::FileTimeToText(Utc(2006, 6, 21, 10, 5, 9));
  PackageFiles::FileTimeToText(Utc(1970, 1, 1, 1));
  EXPECT_THAT(checked, ElementsAre("106-11-21 13:5:9 dst 0", "106-11-21 13:-115:9 dst 0", "106-5-21 13:5:9 dst 0",
                                   "106-5-21 13:-175:9 dst 0", "70-0-1 3:0:0 dst 0"));
}

TEST(LocalTime, IsFormattedWithLeadingZeros) {
  const auto format = [](WORD month, WORD day, WORD year, WORD hour, WORD minute, WORD second) {
    return PackageFiles::FormatLocalTime(SYSTEMTIME{year, month, 5, day, hour, minute, second, 999});
  };
  EXPECT_EQ(format(6, 21, 2006, 13, 5, 9), "06/21/2006 13:05:09");
  EXPECT_EQ(format(3, 7, 2019, 0, 0, 0), "03/07/2019 ");
  EXPECT_EQ(format(3, 7, 2019, 0, 0, 1), "03/07/2019 00:00:01");
  EXPECT_EQ(format(3, 7, 987, 0, 1, 0), "03/07/0987 00:01:00");
  EXPECT_EQ(format(65535, 65535, 65535, 65535, 65535, 65535), "65535/65535/65535 65535:65535:65535");
}

TEST(LocalTime, DoesNotDependOnTheGlobalLocale) {
  const test::HostLocale<test::GroupedDigits> locale;
  EXPECT_EQ(PackageFiles::FormatLocalTime(SYSTEMTIME{2006, 6, 3, 21, 13, 5, 9, 0}), "06/21/2006 13:05:09");
}

}  // namespace
