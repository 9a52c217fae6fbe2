#include <gmock/gmock.h>

#include "devicediscovery.h"
#include "logcapture.h"
#include "pciinfo.h"
#include "records.h"

using namespace Orvane;
using test::Described;
using test::LogLine;
using testing::ElementsAre;

namespace {

PciDeviceRecord Device(const std::string& vendor, const std::string& device, const std::string& part3 = "0000",
                       const std::string& part4 = "0000") {
  PciDeviceRecord record;
  record.vendor_id = vendor;
  record.device_id = device;
  record.identity_part3 = part3;
  record.identity_part4 = part4;
  return record;
}

constexpr char IntelGpio[] = "INTC-VOKTA_IALPSS2_GPIO2_MTL_0000-0000-0000-0000";
constexpr char IntelEventFilter[] = "INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000";

TEST(DeviceIdentity, JoinsTheFourIdentifiers) {
  EXPECT_EQ(DeviceIdentity(Device("AMDI", "0030")), "AMDI-0030-0000-0000");
  EXPECT_EQ(DeviceIdentity(Device("8086", "15F3", "1028", "0A5C")), "8086-15F3-1028-0A5C");
  EXPECT_EQ(DeviceIdentity(PciDeviceRecord()), "---");
}

TEST(DeviceRecordName, BindsADriverToItsDevice) {
  EXPECT_EQ(DeviceRecordName(Device("8086", "15F3", "1028", "0A5C"), "e1d"), "e1d_8086-15F3-1028-0A5C");
}

TEST(DeviceRecordName, NamesADeviceWithoutDriver) {
  EXPECT_EQ(DeviceRecordName(Device("AMDI", "0030"), ""), "AMDI-0030-0000-0000_nodriver#");
}

TEST(DeviceRecordName, GivesTheIntelGpioControllerItsFixedName) {
  for (const char* const id : {"105E", "1083"}) {
    EXPECT_EQ(DeviceRecordName(Device("INTC", id), ""), IntelGpio);
    EXPECT_EQ(DeviceRecordName(Device("INTC", id, "1028", "0A5C"), "ialpss2_gpio2"), IntelGpio);
  }
}

TEST(DeviceRecordName, GivesTheIntelEventFilterItsFixedName) {
  for (const char* const id :
       {"1051", "1054", "1070", "1076", "1077", "1078", "107B", "10CB", "10CC", "10F1", "10F2", "110E"}) {
    EXPECT_EQ(DeviceRecordName(Device("INTC", id), ""), IntelEventFilter) << id;
    EXPECT_EQ(DeviceRecordName(Device("INTC", id), "hidfilter"), IntelEventFilter) << id;
  }
}

TEST(DeviceRecordName, TakesIdentifiersExactly) {
  EXPECT_EQ(DeviceRecordName(Device("INTC", "1099"), ""), "INTC-1099-0000-0000_nodriver#");
  EXPECT_EQ(DeviceRecordName(Device("INTC", "1099"), "base"), "base_INTC-1099-0000-0000");
  EXPECT_EQ(DeviceRecordName(Device("INTC", "105e"), ""), "INTC-105e-0000-0000_nodriver#");
  EXPECT_EQ(DeviceRecordName(Device("intc", "105E"), ""), "intc-105E-0000-0000_nodriver#");
  EXPECT_EQ(DeviceRecordName(Device("INTC", "110e"), ""), "INTC-110e-0000-0000_nodriver#");
  EXPECT_EQ(DeviceRecordName(Device("INTC", "105E "), ""), "INTC-105E -0000-0000_nodriver#");
  EXPECT_EQ(DeviceRecordName(Device("8086", "1083"), ""), "8086-1083-0000-0000_nodriver#");
  EXPECT_EQ(DeviceRecordName(Device("8086", "1051"), "net"), "net_8086-1051-0000-0000");
}

DriverData Record(const std::string& name) {
  DriverData driver;
  driver.name = name;
  driver.file_version = "1.0";
  driver.description = "from the device";
  driver.provider = "device maker";
  return driver;
}

TEST(AmdComponentIdentities, ReplaceTheNoDriverNames) {
  std::vector<DriverData> drivers = {Record("DRTM-0002-0000-0000_nodriver#"), Record("AMDI-0010-0000-0000_nodriver#"),
                                     Record("AMDI-0020-0000-0000_nodriver#"), Record("AMDI-0030-0000-0000_nodriver#")};
  test::LogCapture log;
  ApplyAmdComponentIdentities(drivers);
  const std::string rest = "; description=from the device; provider=device maker; file_version=N/A; found_by_device=0";
  EXPECT_THAT(Described(drivers), ElementsAre("name=AMD-VOKTA_AMDDRTM_0000-0000-0000-0000" + rest,
                                              "name=AMD-VOKTA_AMDI2C_0000-0000-0000-0000" + rest,
                                              "name=AMD-VOKTA_AMDUART_0000-0000-0000-0000" + rest,
                                              "name=AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000" + rest));
  EXPECT_THAT(
      log.Take(),
      ElementsAre(LogLine{3, "find AMDI-0030-0000-0000_nodriver#"}, LogLine{3, "find AMDI-0020-0000-0000_nodriver#"},
                  LogLine{3, "find AMDI-0010-0000-0000_nodriver#"}, LogLine{3, "find DRTM-0002-0000-0000_nodriver#"}));
}

TEST(AmdComponentIdentities, GoToTheFirstRecordOfAName) {
  std::vector<DriverData> drivers = {Record("other"), Record("AMDI-0030-0000-0000_nodriver#"),
                                     Record("AMDI-0030-0000-0000_nodriver#")};
  ApplyAmdComponentIdentities(drivers);
  EXPECT_EQ(drivers[0].name, "other");
  EXPECT_EQ(drivers[0].file_version, "1.0");
  EXPECT_EQ(drivers[1].name, "AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000");
  EXPECT_EQ(drivers[2].name, "AMDI-0030-0000-0000_nodriver#");
  EXPECT_EQ(drivers[2].file_version, "1.0");
}

TEST(AmdComponentIdentities, LeaveDevicesWithADriverAndOtherNamesAlone) {
  std::vector<DriverData> drivers = {Record("amdgpio2_AMDI-0030-0000-0000"), Record("AMDI-0030-0000-0000"),
                                     Record("amdi-0030-0000-0000_nodriver#"), Record("AMDI-0030-0000-0001_nodriver#")};
  const auto before = Described(drivers);
  test::LogCapture log;
  ApplyAmdComponentIdentities(drivers);
  EXPECT_EQ(Described(drivers), before);
  EXPECT_THAT(log.Take(), testing::IsEmpty());
}

TEST(AmdComponentIdentities, LeaveAnEmptyListEmpty) {
  std::vector<DriverData> drivers;
  ApplyAmdComponentIdentities(drivers);
  EXPECT_TRUE(drivers.empty());
}

}  // namespace
