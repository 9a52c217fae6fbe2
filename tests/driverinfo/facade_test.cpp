#include <gmock/gmock.h>

#include <memory>
#include <type_traits>

#include "driverinfo.h"
#include "importhook.h"
#include "logcapture.h"
#include "records.h"

using Orvane::DriverData;
using Orvane::DriverInfo;
using Orvane::DriverInfoSetType;
using testing::ElementsAre;
using testing::IsEmpty;

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
  EXPECT_THAT(test::Described(drivers), ElementsAre("name=mine.sys; found_by_device=0"));
  EXPECT_THAT(log.Take(), IsEmpty());
}

void* Implementation(const DriverInfo& info) { return *reinterpret_cast<void* const*>(&info); }

TEST(DriverInfo, SharesTheImplementationWhenAssigned) {
  const auto first = std::make_unique<DriverInfo>();
  auto second = std::make_unique<DriverInfo>();
  EXPECT_NE(Implementation(*first), Implementation(*second));
  EXPECT_EQ(&(*second = *first), second.get());
  EXPECT_EQ(Implementation(*first), Implementation(*second));
}

void Free(void*, std::size_t) {}

/// The addresses that the library frees while it lives. Its operator delete is the run-time library's, by the name that
/// the compiler gives it.
struct Freed {
  std::vector<void*> addresses;
  test::ImportHook<&Free> hook{test::Library(), "_ZdlPvy", [this](void* address, std::size_t size) {
                                 addresses.push_back(address);
                                 hook.Real(address, size);
                               }};
};

#ifdef __MINGW32__
constexpr bool FreesThroughTheRunTimeLibrary = true;
#else
constexpr bool FreesThroughTheRunTimeLibrary = false;
#endif

class DriverInfoMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (!FreesThroughTheRunTimeLibrary) GTEST_SKIP() << "each module frees by a function of its own";
  }
};

TEST_F(DriverInfoMemory, IsFreedWithTheObject) {
  auto info = std::make_unique<DriverInfo>();
  void* const implementation = Implementation(*info);
  const Freed freed;
  info.reset();
  EXPECT_THAT(freed.addresses, ElementsAre(implementation));
}

TEST_F(DriverInfoMemory, IsFreedOnceWithTheLastObjectThatSharesIt) {
  auto first = std::make_unique<DriverInfo>();
  auto second = std::make_unique<DriverInfo>();
  auto third = std::make_unique<DriverInfo>();
  *second = *first;
  *third = *second;
  void* const implementation = Implementation(*first);
  const Freed freed;
  first.reset();
  third.reset();
  EXPECT_THAT(freed.addresses, IsEmpty());
  std::vector<DriverData> drivers;
  EXPECT_EQ(second->list_drivers(drivers, static_cast<DriverInfoSetType>(3)), 0);
  second.reset();
  EXPECT_THAT(freed.addresses, ElementsAre(implementation));
}

TEST_F(DriverInfoMemory, OfAnObjectThatIsAssignedAnotherStaysAllocated) {
  const DriverInfo first;
  DriverInfo second;
  const Freed freed;
  second = first;
  EXPECT_THAT(freed.addresses, IsEmpty());
}

TEST(DriverInfo, CanBeAssignedToItself) {
  DriverInfo info;
  void* const implementation = Implementation(info);
  DriverInfo& same = info;
  EXPECT_EQ(&(info = same), &info);
  EXPECT_EQ(Implementation(info), implementation);
}

}  // namespace
