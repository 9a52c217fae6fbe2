// Devices whose texts are empty, very long or anything else, through the device listing.
#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>

#include "devicediscovery.h"
#include "hostile.h"
#include "importhook.h"
#include "pciinfo.h"
#include "records.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

using namespace Orvane;
using test::Described;
using test::HostileBatch;
using test::Random;
using test::ThisProgram;

namespace {

std::string AnyText(Random& random) {
  if (random.OneIn(4)) return std::string();
  if (random.OneIn(200)) return random.Text(random.Below(1'000'000));
  return random.Text(random.Size(2000));
}

std::string Identifier(Random& random) {
  static const std::string known[] = {"INTC", "AMDI", "DRTM", "105E", "1083", "10F2",
                                      "110e", "0030", "0020", "0010", "0002", "0000"};
  return random.OneIn(3) ? AnyText(random) : random.Pick(known);
}

PciDeviceRecord AnyDevice(const std::string& package, Random& random) {
  PciDeviceRecord device;
  for (std::string* const text : {&device.description, &device.text3, &device.text4, &device.provider, &device.text7,
                                  &device.text9, &device.text11, &device.text12, &device.text13, &device.text14}) {
    *text = AnyText(random);
  }
  for (std::string* const text :
       {&device.vendor_id, &device.device_id, &device.identity_part3, &device.identity_part4}) {
    *text = Identifier(random);
  }
  for (std::size_t count = random.Below(4); count > 0; --count) device.list.push_back(AnyText(random));
  if (random.OneIn(3)) device.inf_name = package;
  // A name below a folder that is not there is that of no package, whatever it holds.
  if (random.OneIn(4)) device.inf_name = "C:\\no such folder\\" + AnyText(random);
  return device;
}

DriverData Record(const std::string& name, const std::string& description, const std::string& provider,
                  const std::string& version) {
  DriverData driver;
  driver.name = name;
  driver.description = description;
  driver.provider = provider;
  driver.file_version = version;
  return driver;
}

/// What the listing appends for `devices`, of which those with `package` get its one file.
std::vector<DriverData> Expected(const std::vector<PciDeviceRecord>& devices, const std::string& package) {
  static const std::string eventFilters[] = {"1051", "1054", "1070", "1076", "1077", "1078",
                                             "107B", "10CB", "10CC", "10F1", "10F2", "110E"};
  std::vector<DriverData> drivers;
  for (const PciDeviceRecord& device : devices) {
    const std::string identity =
        device.vendor_id + "-" + device.device_id + "-" + device.identity_part3 + "-" + device.identity_part4;
    std::string fixed;
    if (device.vendor_id == "INTC" && (device.device_id == "105E" || device.device_id == "1083"))
      fixed = "INTC-VOKTA_IALPSS2_GPIO2_MTL_0000-0000-0000-0000";
    if (device.vendor_id == "INTC" &&
        std::count(std::begin(eventFilters), std::end(eventFilters), device.device_id) > 0)
      fixed = "INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000";
    if (device.inf_name.empty()) {
      drivers.push_back(
          Record(fixed.empty() ? identity + "_nodriver#" : fixed, device.description, device.provider, "N/A"));
    } else if (device.inf_name == package) {
      drivers.push_back(Record("nic.sys", "Driver disk", "Example Networks", "1.2.3.4"));
      drivers.push_back(drivers.back());
      drivers.back().name = fixed.empty() ? "nic_" + identity : fixed;
    }
  }
  for (const auto& [name, fixed] :
       {std::pair("AMDI-0030-0000-0000_nodriver#", "AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000"),
        std::pair("AMDI-0020-0000-0000_nodriver#", "AMD-VOKTA_AMDUART_0000-0000-0000-0000"),
        std::pair("AMDI-0010-0000-0000_nodriver#", "AMD-VOKTA_AMDI2C_0000-0000-0000-0000"),
        std::pair("DRTM-0002-0000-0000_nodriver#", "AMD-VOKTA_AMDDRTM_0000-0000-0000-0000")}) {
    for (DriverData& driver : drivers) {
      if (driver.name != name) continue;
      driver.name = fixed;
      break;
    }
  }
  return drivers;
}

TEST(HostileDevices, AreListedAsTheyAre) {
  const std::string path = test::TemporaryPath("hostile.inf");
  const test::ScratchFile package(
      path, std::vector<std::string>{"[Version]", "Signature=\"$WINDOWS NT$\"", "Provider=\"Example Networks\"",
                                     "DriverVer=06/21/2006,1.2.3.4", "[SourceDisksNames]", "1=\"Driver disk\"",
                                     "[SourceDisksFiles]", "nic.sys=1"});
  // Chipset packages are no concern of these.
  HOOK(open, ThisProgram(), RegOpenKeyExA,
       [](HKEY, const char*, DWORD, REGSAM, HKEY*) -> LSTATUS { return ERROR_FILE_NOT_FOUND; });
  HostileBatch batch("devices");
  batch.ForEach([&](Random& random) {
    std::vector<PciDeviceRecord> devices;
    for (std::size_t count = random.Below(6); count > 0; --count) devices.push_back(AnyDevice(path, random));
    std::vector<DriverData> drivers;
    DeviceDiscovery::ResolveDeviceDrivers(devices, drivers);
    EXPECT_EQ(Described(drivers), Described(Expected(devices, path)));
  });
}

}  // namespace
