#include <gmock/gmock.h>

#include "driverinfo.h"
#include "standinlog.h"

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

TEST(AnotherLoggingModule, TakesTheLinesOfAListing) {
  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  EXPECT_EQ(info.list_drivers(drivers, Orvane::Registered), 0);
  const std::vector<std::string>& lines = StandInLines();
  ASSERT_THAT(lines, Not(IsEmpty()));
  EXPECT_EQ(lines.front(), "4 Start to list registered driver files.");
  EXPECT_THAT(lines.back(), HasSubstr("AMD EPYC SP3 PSHED Plug-in Driver"));
  for (const Orvane::DriverData& driver : drivers) {
    if (driver.path.empty()) continue;
    EXPECT_THAT(lines,
                Contains("4 DRIVERINFO.name=" + driver.name + " DRIVERINFO.file_version=" + driver.file_version));
  }
}

}  // namespace
