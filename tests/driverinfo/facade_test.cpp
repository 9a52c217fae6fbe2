#include <gmock/gmock.h>

#include <memory>
#include <type_traits>

#include "driverinfo.h"
#include "logcapture.h"
#include "records.h"

using Orvane::DriverData;
using Orvane::DriverInfo;
using Orvane::DriverInfoSetType;

namespace {

std::vector<DriverData> OneRecord() {
  std::vector<DriverData> drivers(1);
  drivers[0].name = "mine.sys";
  return drivers;
}

TEST(DriverInfo, IsOnePointerWideAndNotCopyConstructible) {
  EXPECT_EQ(sizeof(DriverInfo), sizeof(void*));
  EXPECT_FALSE(std::is_copy_constructible_v<DriverInfo>);
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<DriverInfoSetType>, std::int32_t>));
}

TEST(DriverInfo, DoesNothingForAnUnknownMode) {
  DriverInfo info;
  std::vector<DriverData> drivers = OneRecord();
  test::LogCapture log;
  for (const int mode : {3, -1, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
    EXPECT_EQ(info.list_drivers(drivers, static_cast<DriverInfoSetType>(mode)), 0);
  }
  EXPECT_THAT(test::Described(drivers), testing::ElementsAre("name=mine.sys; found_by_device=0"));
  EXPECT_THAT(log.Take(), testing::IsEmpty());
}

void* Implementation(const DriverInfo& info) { return *reinterpret_cast<void* const*>(&info); }

TEST(DriverInfo, SharesTheImplementationWhenAssigned) {
  const auto first = std::make_unique<DriverInfo>();
  auto second = std::make_unique<DriverInfo>();
  EXPECT_NE(Implementation(*first), Implementation(*second));
  EXPECT_EQ(&(*second = *first), second.get());
  EXPECT_EQ(Implementation(*first), Implementation(*second));
}

TEST(DriverInfo, OutlivesTheObjectThatItWasAssignedFrom) {
  DriverInfo survivor;
  {
    DriverInfo other;
    survivor = other;
    DriverInfo third;
    third = survivor;
  }
  std::vector<DriverData> drivers;
  EXPECT_EQ(survivor.list_drivers(drivers, static_cast<DriverInfoSetType>(3)), 0);
  // A freed implementation would be handed out again.
  const DriverInfo fresh;
  EXPECT_NE(Implementation(fresh), Implementation(survivor));
}

TEST(DriverInfo, CanBeAssignedToItself) {
  DriverInfo info;
  void* const implementation = Implementation(info);
  DriverInfo& same = info;
  EXPECT_EQ(&(info = same), &info);
  EXPECT_EQ(Implementation(info), implementation);
}

}  // namespace
