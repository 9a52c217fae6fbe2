#include "inventory/predicates.h"

#include <gtest/gtest.h>

using namespace inventory;

namespace {

Record Of(Kind kind) {
  Record record;
  record.kind = kind;
  return record;
}

constexpr Kind AllKinds[] = {Kind::Service, Kind::Device, Kind::Package, Kind::Chipset};

TEST(Predicates, KnowKindsApart) {
  for (const Kind kind : AllKinds) {
    const Record record = Of(kind);
    EXPECT_EQ(IsService(record), kind == Kind::Service);
    EXPECT_EQ(IsDevice(record), kind == Kind::Device);
    EXPECT_EQ(IsPackage(record), kind == Kind::Package);
    EXPECT_EQ(KindNamed(KindName(kind)), kind);
  }
  EXPECT_EQ(KindNamed("driver"), std::nullopt);
}

TEST(Predicates, CallAServiceRunningWhoseStateIsSo) {
  Record record = Of(Kind::Service);
  EXPECT_FALSE(IsRunning(record));
  record.state = "Start Pending";
  EXPECT_FALSE(IsRunning(record));
  record.state = "Running";
  EXPECT_TRUE(IsRunning(record));
  record.kind = Kind::Device;
  EXPECT_FALSE(IsRunning(record));
}

TEST(Predicates, KnowTheStartTypesOfWindowsItself) {
  Record record = Of(Kind::Service);
  for (const auto& [start, expected] :
       {std::pair("Boot Start", true), std::pair("System Start", true), std::pair("Automatic", true),
        std::pair("Manual", false), std::pair("Disabled", false), std::pair("", false)}) {
    record.start_type = start;
    EXPECT_EQ(StartsByItself(record), expected) << start;
  }
}

TEST(Predicates, CallADeviceWithoutPackageOneWithoutDriver) {
  Record record = Of(Kind::Device);
  EXPECT_TRUE(HasNoDriver(record));
  record.inf = "oem1.inf";
  EXPECT_FALSE(HasNoDriver(record));
  EXPECT_FALSE(HasNoDriver(Of(Kind::Service)));
  EXPECT_FALSE(HasNoDriver(Of(Kind::Package)));
}

TEST(Predicates, SeeProblemsOfDevicesAndMissingImagesOfServices) {
  Record record = Of(Kind::Device);
  EXPECT_FALSE(HasProblem(record));
  record.problem_code = 43;
  EXPECT_TRUE(HasProblem(record));
  Record service = Of(Kind::Service);
  EXPECT_FALSE(IsImageMissing(service));
  service.image_missing = true;
  EXPECT_TRUE(IsImageMissing(service));
}

TEST(Predicates, KnowOemPackagesByTheirNames) {
  Record record = Of(Kind::Package);
  for (const auto& [inf, expected] :
       {std::pair("oem0.inf", true), std::pair("OEM12.INF", true), std::pair("oem.inf", true),
        std::pair("netrtx.inf", false), std::pair("oem1.txt", false), std::pair("", false)}) {
    record.inf = inf;
    EXPECT_EQ(IsOemPackage(record), expected) << inf;
  }
  record.kind = Kind::Device;
  record.inf = "oem0.inf";
  EXPECT_FALSE(IsOemPackage(record));
}

TEST(Predicates, CallThirdPartyWhatTheMakerOfWindowsDidNotMake) {
  Record record = Of(Kind::Service);
  EXPECT_TRUE(IsThirdParty(record)) << "nobody knows whose it is";
  record.provider = "Tonart Audio";
  EXPECT_TRUE(IsThirdParty(record));
  record.provider = "MICROSOFT Windows";
  EXPECT_FALSE(IsThirdParty(record));
}

TEST(Predicates, KnowWhichVersionsSaySomething) {
  EXPECT_TRUE(IsKnownVersion("1.0"));
  EXPECT_FALSE(IsKnownVersion(""));
  EXPECT_FALSE(IsKnownVersion("N/A"));
}

}  // namespace
