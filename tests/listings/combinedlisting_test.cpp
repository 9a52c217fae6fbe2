
#include <algorithm>
#include <new>

#include "failingallocation.h"
#include "listings.h"
#include "locales.h"

using namespace test;
using Orvane::All;
using Orvane::ByDevice;
using Orvane::DriverData;
using Orvane::Registered;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CombinedListing : public Listing {
 protected:
  std::string DriverPath(const std::string& file) { return SystemDirectory() + "\\drivers\\" + file; }
  std::string InfPath(const std::string& file) { return InfDirectory() + "\\" + file; }

  std::string ServiceRecord(const std::string& name, const std::string& size) {
    return "name=" + name + "; path=" + DriverPath(name) +
           "; state=Stopped; start_type=Manual; date=06/21/2006 13:05:09; size=" + size + "; found_by_device=0";
  }

  LogLine Shadowed(const std::string& name, const std::string& size) {
    return {3, name + "; version=" + size + " already found by device."};
  }
};

const LogLine Enter{4, "Enter DriverInfoImp::GetDriveInfoFromSysFile()"};
const LogLine Exit{4, "Exiting DriverInfoImp::GetDriveInfoFromSysFile()"};

TEST_F(CombinedListing, MergesDevicesServicesAndOemPackages) {
  const ScratchFile inf(InfPath("oidevice.inf"), PackageLines({"OiShared.sys"}));
  const ScratchFile oem(InfPath("oem0.inf"), PackageLines({"oioem.sys"}));
  const ScratchFile sharedImage(DriverPath("OiShared.sys"), 5000);
  const ScratchFile ownImage(DriverPath("OiOwn.sys"), 3000);
  const DriverService shared("OiShared", "OiShared.sys");
  const DriverService own("OiOwn", "OiOwn.sys");
  SetDevices({ScriptedDevice("V", "1", inf.Path()), ScriptedDevice("V", "2", "")});
  EXPECT_THAT(List(All),
              ElementsAre(ServiceRecord("OiOwn.sys", "2"), PackageRecord("OiShared.sys", 1),
                          PackageRecord("OiShared_V-1-0000-0000", 1),
                          NoDriverRecord("V-2-0000-0000_nodriver#", "2", "V"), PackageRecord("oioem.sys", 0)));
  EXPECT_EQ(
      log.Take(),
      (std::vector<LogLine>{StartDevices, {3, "V-1-0000-0000|" + inf.Path()}} + PackageLog(inf.Path(), "OiShared.sys") +
       std::vector<LogLine>{{3, "OiShared.sys|1.2.3.4|"},
                            {3, "V-2-0000-0000|"},
                            {3, "Driver name is empty, this device isn't installed a driver."},
                            NoIntel,
                            NoAmd,
                            NoPshed,
                            Before(3),
                            After(3),
                            StartServices,
                            Enter,
                            Exit,
                            {4, "DRIVERINFO.name=OiShared.sys DRIVERINFO.file_version="},
                            Enter,
                            Exit,
                            {4, "DRIVERINFO.name=OiOwn.sys DRIVERINFO.file_version="},
                            NoIntel,
                            NoAmd,
                            NoPshed,
                            StartOem} +
       PackageLog(oem.Path(), "oioem.sys") + std::vector<LogLine>{Shadowed("OiShared.sys", "4"), Before(5), After(5)}));
}

TEST_F(CombinedListing, ShadowsTheRecordsOfAFormerDeviceListing) {
  const ScratchFile inf(InfPath("oidevice.inf"), PackageLines({"OiShared.sys"}));
  SetDevices({ScriptedDevice("V", "1", inf.Path()), ScriptedDevice("V", "2", "")});
  std::vector<DriverData> drivers;
  EXPECT_EQ(info.list_drivers(drivers, ByDevice), 0);
  const std::vector<std::string> devices = Described(drivers);
  EXPECT_EQ(devices.size(), 3u);
  log.Take();
  EXPECT_EQ(info.list_drivers(drivers, All), 0);
  EXPECT_EQ(Described(drivers), devices);
  EXPECT_EQ(log.Take(), (std::vector<LogLine>{StartDevices, FromCache, StartServices, NoIntel, NoAmd, NoPshed, StartOem,
                                              Shadowed("OiShared.sys", ""), Shadowed("OiShared_V-1-0000-0000", ""),
                                              Shadowed("V-2-0000-0000_nodriver#", ""), Before(3), After(3)}));
}

TEST_F(CombinedListing, LosesNoNameWhenMemoryRunsOut) {
  if (!IsWine()) GTEST_SKIP() << "memory comes from elsewhere";
  const ScratchFile inf(InfPath("oidevice.inf"), PackageLines({"OiShared.sys"}));
  std::vector<Orvane::PciDeviceRecord> devices = {ScriptedDevice("V", "1", inf.Path())};
  for (int i = 0; i < 20; ++i) devices.push_back(ScriptedDevice("V", "2" + std::to_string(i), ""));
  SetDevices(devices);
  EXPECT_EQ(List(All).size(), 22u);
  DriverData own;
  own.name = "OiShared.sys";
  std::size_t failures = 0;
  for (bool isDone = false; !isDone; ++failures) {
    std::vector<DriverData> drivers = {own};
    try {
      const FailingAllocation failing(failures);
      info.list_drivers(drivers, All);
      // A line of the log that finds no memory is lost, and nothing else.
      isDone = !failing.HasFailed();
    } catch (const std::bad_alloc&) {
      EXPECT_THAT(drivers, testing::Contains(own)) << "behind " << failures;
    }
  }
  EXPECT_GT(failures, 20u);
}

TEST_F(CombinedListing, AnswersDevicesAndServicesFromTheirCaches) {
  const ScratchFile oem(InfPath("oem0.inf"), PackageLines({"oioem.sys"}));
  const ScratchFile image(DriverPath("OiOwn.sys"), 3000);
  const DriverService service("OiOwn", "OiOwn.sys");
  SetDevices({ScriptedDevice("V", "1", "")});
  const auto first = List(All);
  EXPECT_EQ(first.size(), 3u);
  log.Take();
  EXPECT_EQ(List(All), first);
  EXPECT_EQ(log.Take(), (std::vector<LogLine>{StartDevices, FromCache, StartServices, FromCache, StartOem} +
                         PackageLog(oem.Path(), "oioem.sys") + std::vector<LogLine>{Before(3), After(3)}));
}

TEST_F(CombinedListing, LeavesItsCachesToTheOtherListings) {
  const ScratchFile image(DriverPath("OiOwn.sys"), 3000);
  const DriverService service("OiOwn", "OiOwn.sys");
  SetDevices({ScriptedDevice("V", "1", "")});
  std::vector<DriverData> drivers(1);
  drivers[0].name = "mine";
  info.list_drivers(drivers, All);
  EXPECT_EQ(drivers.size(), 3u);
  EXPECT_THAT(List(ByDevice), ElementsAre(NoDriverRecord("V-1-0000-0000_nodriver#", "1", "V")))
      << "the device cache holds device records only";
  EXPECT_THAT(List(Registered), ElementsAre(ServiceRecord("OiOwn.sys", "2")));
}

TEST_F(CombinedListing, WithoutDevicesHoldsTheOtherSources) {
  const ScratchFile oem(InfPath("oem0.inf"), PackageLines({"Oi.sys"}, "2.0"));
  const ScratchFile image(DriverPath("OiOwn.sys"), 1);
  const DriverService service("OiOwn", "OiOwn.sys");
  SetDevices({});
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("Oi.sys", 0, "2.0"), ServiceRecord("OiOwn.sys", "0")));
}

TEST_F(CombinedListing, OfABareMachineIsEmpty) {
  SetDevices({});
  EXPECT_THAT(List(All), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(StartDevices, NoIntel, NoAmd, NoPshed, Before(0), After(0), StartServices,
                                      NoIntel, NoAmd, NoPshed, StartOem, Before(0), After(0)));
}

TEST_F(CombinedListing, KeepsTheOldestOfServicesAndPackages) {
  const ScratchFile newer(InfPath("oem0.inf"), PackageLines({"oi.sys"}, "1.10"));
  const ScratchFile older(InfPath("oem1.inf"), PackageLines({"oi.sys"}, "1.2"));
  SetDevices({});
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("oi.sys", 0, "1.2")));
  const std::vector<LogLine> lines = log.Take();
  EXPECT_EQ(lines[lines.size() - 2], Before(2));
  EXPECT_EQ(lines.back(), After(1));
}

TEST_F(CombinedListing, PrefersADeviceRecordToOlderOnes) {
  const ScratchFile device(InfPath("oidevice.inf"), PackageLines({"oi.sys"}, "9.0"));
  const ScratchFile older(InfPath("oem0.inf"), PackageLines({"oi.sys"}, "1.0"));
  SetDevices({ScriptedDevice("V", "1", device.Path())});
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("oi.sys", 1, "9.0"), PackageRecord("oi_V-1-0000-0000", 1, "9.0")));
  EXPECT_THAT(log.Take(), testing::Contains(Shadowed("oi.sys", ""))) << "an OEM record has no size";
}

TEST_F(CombinedListing, KeepsNamesThatDifferInCase) {
  const ScratchFile lower(InfPath("oem0.inf"), PackageLines({"oi.sys"}));
  const ScratchFile upper(InfPath("oem1.inf"), PackageLines({"OI.SYS"}));
  SetDevices({});
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("OI.SYS", 0), PackageRecord("oi.sys", 0)));
}

TEST_F(CombinedListing, ShadowsTheCallersRecordsTooInTheOrderOfTheDevices) {
  SetDevices({ScriptedDevice("V", "2", ""), ScriptedDevice("V", "1", "")});
  std::vector<DriverData> drivers(5);
  const char* const names[] = {"V-2-0000-0000_nodriver#", "V-1-0000-0000_nodriver#", "mine.sys",
                               "V-2-0000-0000_nodriver#", "mine.sys"};
  for (int i = 0; i < 5; ++i) {
    drivers[static_cast<std::size_t>(i)].name = names[i];
    drivers[static_cast<std::size_t>(i)].size = std::to_string(100 + i);
  }
  drivers[4].file_version = "0.1";
  drivers[2].file_version = "0.2";
  EXPECT_EQ(info.list_drivers(drivers, All), 0);
  EXPECT_THAT(Described(drivers), ElementsAre(NoDriverRecord("V-1-0000-0000_nodriver#", "1", "V"),
                                              NoDriverRecord("V-2-0000-0000_nodriver#", "2", "V"),
                                              "name=mine.sys; file_version=0.1; size=104; found_by_device=0"));
  std::vector<LogLine> lines = log.Take();
  lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), StartOem));
  EXPECT_THAT(lines, ElementsAre(StartOem, Shadowed("V-1-0000-0000_nodriver#", "101"),
                                 Shadowed("V-2-0000-0000_nodriver#", "100"), Shadowed("V-2-0000-0000_nodriver#", "103"),
                                 Before(4), After(3)));
}

TEST_F(CombinedListing, CountsWithoutGroupingDigits) {
  SetDevices({});
  std::vector<DriverData> drivers(12);
  for (std::size_t i = 0; i < 12; ++i) drivers[i].name = std::to_string(i);
  const test::HostLocale<test::GroupedDigits> locale;
  info.list_drivers(drivers, All);
  const std::vector<LogLine> lines = log.Take();
  EXPECT_EQ(lines.back(), After(12));
}

}  // namespace
