#include "importhook.h"
#include "listings.h"

using namespace test;
using Orvane::ByDevice;
using Orvane::DriverData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DeviceListing : public Listing {
 protected:
  std::vector<std::string> Names() {
    std::vector<DriverData> drivers;
    EXPECT_EQ(info.list_drivers(drivers, ByDevice), 0);
    std::vector<std::string> names;
    for (const DriverData& driver : drivers) names.push_back(driver.name);
    return names;
  }

  std::string InfPath(const std::string& file) { return InfDirectory() + "\\" + file; }
};

TEST_F(DeviceListing, ListsAPackageUnderItsOwnNameAndUnderThatOfTheDevice) {
  const ScratchFile inf(InfPath("oi.inf"), PackageLines({"e1000.SYS"}));
  SetDevices({ScriptedDevice("8086", "15F3", inf.Path(), "1028", "0A5C")});
  EXPECT_THAT(List(ByDevice),
              ElementsAre(PackageRecord("e1000.SYS", 1), PackageRecord("e1000_8086-15F3-1028-0A5C", 1)));
  EXPECT_EQ(CallsWithEmptyVector(), 1);
  EXPECT_EQ(log.Take(),
            (std::vector<LogLine>{StartDevices, {3, "8086-15F3-1028-0A5C|" + inf.Path()}} +
             PackageLog(inf.Path(), "e1000.SYS") +
             std::vector<LogLine>{{3, "e1000.SYS|1.2.3.4|"}, NoIntel, NoAmd, NoPshed, Before(2), After(2)}));
}

TEST_F(DeviceListing, ListsADeviceWithoutDriver) {
  SetDevices({ScriptedDevice("8086", "7E4C", "", "1028", "0A5C")});
  EXPECT_THAT(List(ByDevice), ElementsAre(NoDriverRecord("8086-7E4C-1028-0A5C_nodriver#", "7E4C", "8086")));
  EXPECT_THAT(log.Take(), ElementsAre(StartDevices, LogLine{3, "8086-7E4C-1028-0A5C|"},
                                      LogLine{3, "Driver name is empty, this device isn't installed a driver."},
                                      NoIntel, NoAmd, NoPshed, Before(1), After(1)));
}

TEST_F(DeviceListing, WithoutDevicesHoldsTheChipsetPackages) {
  SetDevices({});
  const RegistryValue intel("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  const RegistryValue amd("SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers", "ProductVersion", REG_SZ, "6.05");
  const RegistryValue pshed("SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver", "ProductVersion", REG_SZ,
                            "1.0");
  EXPECT_THAT(
      List(ByDevice),
      ElementsAre(
          "name=amd_chipset; description=Amd chipset Driver; provider=Amd; file_version=6.05; found_by_device=1",
          "name=amd_ppd; description=Amd EPYC SP3 PSHED Plug-in Driver; provider=Amd; file_version=1.0; "
          "found_by_device=1",
          "name=intel_chipset; description=Intel chipset Driver; provider=Intel; file_version=10.1; "
          "found_by_device=1"));
}

TEST_F(DeviceListing, OfABareMachineIsEmptyAndMadeAfresh) {
  SetDevices({});
  for (int call = 1; call <= 2; ++call) {
    EXPECT_THAT(List(ByDevice), IsEmpty());
    EXPECT_THAT(log.Take(), ElementsAre(StartDevices, NoIntel, NoAmd, NoPshed, Before(0), After(0)));
    EXPECT_EQ(CallsWithEmptyVector(), call);
  }
  SetDevices({ScriptedDevice("8086", "7E4C", "")});
  EXPECT_EQ(List(ByDevice).size(), 1u);
}

TEST_F(DeviceListing, CutsExtensionsWhereverTheyStand) {
  const ScratchFile inf(InfPath("oi.inf"), PackageLines({"a.sys.inf", "x.inf.sys", ".sys", "PLAIN.SYS"}));
  SetDevices({ScriptedDevice("V", "D", inf.Path())});
  EXPECT_THAT(Names(), ElementsAre(".sys", "PLAIN.SYS", "PLAIN_V-D-0000-0000", "a.sys.inf", "a.sys_V-D-0000-0000",
                                   "x.inf.sys", "x_V-D-0000-0000"));
}

TEST_F(DeviceListing, ListsAPackageOfTwoDevicesOnceUnderItsOwnName) {
  const ScratchFile inf(InfPath("oi.inf"), PackageLines({"nic.sys"}));
  SetDevices({ScriptedDevice("V", "1", inf.Path()), ScriptedDevice("V", "2", inf.Path())});
  EXPECT_THAT(Names(), ElementsAre("nic.sys", "nic_V-1-0000-0000", "nic_V-2-0000-0000"));
  const std::vector<LogLine> lines = log.Take();
  EXPECT_EQ(lines[lines.size() - 2], Before(4));
  EXPECT_EQ(lines.back(), After(3));
}

TEST_F(DeviceListing, GivesIntelComponentsTheirFixedNames) {
  const ScratchFile inf(InfPath("oi.inf"), PackageLines({"hidfilter.sys", "second.sys"}));
  SetDevices({ScriptedDevice("INTC", "10F2", inf.Path()), ScriptedDevice("INTC", "1083", ""),
              ScriptedDevice("INTC", "1099", "")});
  EXPECT_THAT(List(ByDevice),
              ElementsAre(NoDriverRecord("INTC-1099-0000-0000_nodriver#", "1099", "INTC"),
                          PackageRecord("INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000", 1),
                          NoDriverRecord("INTC-VOKTA_IALPSS2_GPIO2_MTL_0000-0000-0000-0000", "1083", "INTC"),
                          PackageRecord("hidfilter.sys", 1), PackageRecord("second.sys", 1)));
}

TEST_F(DeviceListing, GivesAmdComponentsWithoutDriverTheirFixedNames) {
  const ScratchFile inf(InfPath("oi.inf"), PackageLines({"amdgpio2.sys"}));
  SetDevices({ScriptedDevice("AMDI", "0030", inf.Path()), ScriptedDevice("AMDI", "0020", ""),
              ScriptedDevice("AMDI", "0010", ""), ScriptedDevice("DRTM", "0002", "")});
  EXPECT_THAT(List(ByDevice),
              ElementsAre(NoDriverRecord("AMD-VOKTA_AMDDRTM_0000-0000-0000-0000", "0002", "DRTM"),
                          NoDriverRecord("AMD-VOKTA_AMDI2C_0000-0000-0000-0000", "0010", "AMDI"),
                          NoDriverRecord("AMD-VOKTA_AMDUART_0000-0000-0000-0000", "0020", "AMDI"),
                          PackageRecord("amdgpio2.sys", 1), PackageRecord("amdgpio2_AMDI-0030-0000-0000", 1)));
}

TEST_F(DeviceListing, ListsNothingOfADeviceWhosePackageCannotBeRead) {
  SetDevices({ScriptedDevice("V", "1", InfPath("none.inf")), ScriptedDevice("V", "2", "")});
  EXPECT_THAT(Names(), ElementsAre("V-2-0000-0000_nodriver#"));
  const std::vector<LogLine> lines = log.Take();
  EXPECT_EQ(lines.at(2), (LogLine{4, "Start to parse " + InfPath("none.inf")}));
  EXPECT_EQ(lines.at(3), (LogLine{4, "Get driver version failed"}));
}

TEST_F(DeviceListing, KeepsTheOldestOfOneName) {
  const ScratchFile newer(InfPath("oi1.inf"), PackageLines({"nic.sys"}, "1.10"));
  const ScratchFile older(InfPath("oi2.inf"), PackageLines({"nic.sys"}, "1.2"));
  SetDevices({ScriptedDevice("V", "1", newer.Path()), ScriptedDevice("V", "2", older.Path())});
  EXPECT_THAT(List(ByDevice),
              ElementsAre(PackageRecord("nic.sys", 1, "1.2"), PackageRecord("nic_V-1-0000-0000", 1, "1.10"),
                          PackageRecord("nic_V-2-0000-0000", 1, "1.2")));
}

TEST_F(DeviceListing, AnswersFromItsCacheAndReplacesWhatTheCallerHas) {
  SetDevices({ScriptedDevice("V", "2", ""), ScriptedDevice("V", "1", "")});
  const auto first = List(ByDevice);
  EXPECT_EQ(first.size(), 2u);
  log.Take();
  SetDevices({});
  std::vector<DriverData> drivers(3);
  EXPECT_EQ(info.list_drivers_by_device(drivers), 0);
  EXPECT_EQ(Described(drivers), first);
  EXPECT_THAT(log.Take(), ElementsAre(StartDevices, FromCache));
  EXPECT_EQ(CallsWithEmptyVector(), 1);
  Orvane::DriverInfo other;
  std::vector<DriverData> again;
  other.list_drivers(again, ByDevice);
  EXPECT_EQ(Described(again), first);
}

TEST_F(DeviceListing, TakesWhatTheCallerHasIntoItsFirstResultAndIntoTheCache) {
  SetDevices({ScriptedDevice("V", "1", "")});
  std::vector<DriverData> drivers(2);
  drivers[0].name = "zz.sys";
  drivers[1].name = "V-1-0000-0000_nodriver#";
  drivers[1].file_version = "1.0";
  info.list_drivers(drivers, ByDevice);
  EXPECT_THAT(Described(drivers), ElementsAre("name=V-1-0000-0000_nodriver#; file_version=1.0; found_by_device=1",
                                              "name=zz.sys; found_by_device=1"))
      << "the caller's record of the same name is older than N/A";
  EXPECT_EQ(List(ByDevice), Described(drivers));
}

TEST_F(DeviceListing, IsTheSameByBothFunctions) {
  SetDevices({ScriptedDevice("V", "1", "")});
  std::vector<DriverData> drivers;
  EXPECT_EQ(info.list_drivers_by_device(drivers), 0);
  EXPECT_EQ(List(ByDevice), Described(drivers));
  EXPECT_EQ(drivers.size(), 1u);
}

TEST_F(DeviceListing, AsksTheInventoryByItsPlainName) { EXPECT_NO_THROW(ImportSlot(test::Library(), "GetPciInfo")); }

}  // namespace
