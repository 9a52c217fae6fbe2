// The real module on real devices.
#include "pciinfo.h"

#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <algorithm>
#include <iterator>

#include "importhook.h"
#include "logcapture.h"
#include "scratchmachine.h"

using Orvane::PciDeviceRecord;
using test::Device;
using test::DeviceSettings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

HMODULE Module() { return GetModuleHandleA("pciinfo.dll"); }

std::vector<std::string> Fields(const PciDeviceRecord& device) {
  std::vector<std::string> fields = {device.description, device.device_id,      device.text3,   device.text4,
                                     device.provider,    device.vendor_id,      device.text7,   device.identity_part3,
                                     device.text9,       device.identity_part4, device.text11,  device.text12,
                                     device.text13,      device.text14,         device.inf_name};
  fields.insert(fields.end(), device.list.begin(), device.list.end());
  return fields;
}

DeviceSettings NetworkAdapter() {
  DeviceSettings settings;
  settings.instanceId = "PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03\\3&11583659&0&FE";
  settings.description = "Network adapter";
  settings.manufacturer = "Example Networks";
  settings.className = "Net";
  settings.hardwareIds = {"PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03", "PCI\\VEN_8086&DEV_15F3"};
  settings.location = "PCI bus 0, device 31, function 6";
  settings.service = "examplenet";
  settings.friendlyName = "Example adapter #1";
  settings.package = test::InstalledPackage{"oem0.inf", "12.19.2.45", "5-17-2023"};
  return settings;
}

DeviceSettings Named(const std::string& instanceId) {
  DeviceSettings settings;
  settings.instanceId = instanceId;
  settings.description = "Device";
  return settings;
}

TEST(PciDeviceRecord, HasItsMembersInTheOrderThatAllModulesShare) {
  const PciDeviceRecord r;
  const void* const members[] = {&r.description, &r.device_id,      &r.text3,    &r.text4,
                                 &r.provider,    &r.vendor_id,      &r.text7,    &r.identity_part3,
                                 &r.text9,       &r.identity_part4, &r.text11,   &r.text12,
                                 &r.text13,      &r.text14,         &r.inf_name, &r.list};
  EXPECT_EQ(members[0], &r);
  for (std::size_t i = 1; i < std::size(members); ++i) {
    EXPECT_EQ(static_cast<const char*>(members[i]) - static_cast<const char*>(members[i - 1]),
              static_cast<std::ptrdiff_t>(sizeof(std::string)))
        << i;
  }
  EXPECT_EQ(sizeof(r), 15 * sizeof(std::string) + sizeof(std::vector<std::string>));
}

class PciInfo : public test::ScratchMachine {
 protected:
  /// What the module reports of the devices of this test: a machine may have others.
  std::vector<PciDeviceRecord> Devices() {
    std::vector<PciDeviceRecord> devices;
    GetPciInfo(devices);
    devices.erase(std::remove_if(devices.begin(), devices.end(),
                                 [](const PciDeviceRecord& device) { return device.description == "Wine Adapter"; }),
                  devices.end());
    return devices;
  }

  std::vector<std::string> Identities() {
    std::vector<std::string> identities;
    for (const PciDeviceRecord& device : Devices()) {
      identities.push_back(device.vendor_id + "-" + device.device_id + "-" + device.identity_part3 + "-" +
                           device.identity_part4);
    }
    return identities;
  }

  test::LogCapture log;
};

TEST_F(PciInfo, TellsEverythingAboutADevice) {
  const Device device(NetworkAdapter());
  const auto devices = Devices();
  ASSERT_EQ(devices.size(), 1u);
  EXPECT_THAT(Fields(devices[0]),
              ElementsAre("Network adapter", "15F3", "PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03",
                          "PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03\\3&11583659&0&FE", "Example Networks", "8086",
                          "Net", "1028", "PCI bus 0, device 31, function 6", "0A5C", "examplenet", "12.19.2.45",
                          "5-17-2023", "Example adapter #1", test::InfDirectory() + "\\oem0.inf",
                          "PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03", "PCI\\VEN_8086&DEV_15F3"));
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST_F(PciInfo, HasNoInfForADeviceWithoutDriver) {
  const Device device(Named("PCI\\VEN_8086&DEV_7E4C\\1"));
  const auto devices = Devices();
  ASSERT_EQ(devices.size(), 1u);
  EXPECT_THAT(Fields(devices[0]), ElementsAre("Device", "7E4C", "", "PCI\\VEN_8086&DEV_7E4C\\1", "", "8086", "", "0000",
                                              "", "0000", "", "", "", "", ""));
}

TEST_F(PciInfo, ReportsPciAndPlatformDevicesOnly) {
  const Device pci(Named("PCI\\VEN_8086&DEV_7E4C\\1"));
  const Device acpi(Named("ACPI\\INTC105E\\2&DABA3FF&0"));
  const Device usb(Named("USB\\VID_8086&PID_0001\\1"));
  const Device root(Named("ROOT\\EXAMPLE\\0000"));
  EXPECT_THAT(Identities(), testing::UnorderedElementsAre("8086-7E4C-0000-0000", "INTC-105E-0000-0000"));
}

TEST_F(PciInfo, ReportsEachOfSeveralAlikeDevices) {
  const Device first(Named("ACPI\\AMDI0020\\0"));
  const Device second(Named("ACPI\\AMDI0020\\1"));
  EXPECT_THAT(Identities(), ElementsAre("AMDI-0020-0000-0000", "AMDI-0020-0000-0000"));
}

TEST_F(PciInfo, PrefersHardwareIdentifiersToTheInstance) {
  DeviceSettings settings = Named("ACPI\\XXXX0000\\0");
  settings.hardwareIds = {"*INTC1077", "ACPI\\VEN_INTC&DEV_105E", "ACPI\\AMDI0030"};
  const Device device(settings);
  EXPECT_THAT(Identities(), ElementsAre("INTC-105E-0000-0000")) << "the first of a known form";
}

TEST_F(PciInfo, TakesTheWholeNameOfADeviceWithoutIdentifier) {
  const Device device(Named("ACPI\\FIXEDBUTTON\\2&DABA3FF&0"));
  EXPECT_THAT(Identities(), ElementsAre("FIXEDBUTTON-0000-0000-0000"));
}

TEST_F(PciInfo, AppendsToWhatTheCallerHas) {
  const Device device(Named("ACPI\\AMDI0020\\0"));
  std::vector<PciDeviceRecord> devices(1);
  devices[0].description = "mine";
  GetPciInfo(devices);
  EXPECT_EQ(devices[0].description, "mine");
  EXPECT_GE(devices.size(), 2u);
}

TEST_F(PciInfo, ReadsLongTexts) {
  DeviceSettings settings = Named("PCI\\VEN_8086&DEV_7E4C\\1");
  settings.manufacturer = std::string(5000, 'm');
  for (int i = 0; i < 200; ++i) settings.hardwareIds.push_back("PCI\\VEN_8086&DEV_" + std::to_string(1000 + i));
  const Device device(settings);
  const auto devices = Devices();
  ASSERT_EQ(devices.size(), 1u);
  EXPECT_EQ(devices[0].provider, settings.manufacturer);
  EXPECT_EQ(devices[0].list, settings.hardwareIds);
  EXPECT_EQ(devices[0].device_id, "1000");
}

TEST_F(PciInfo, AsksForPresentDevicesOfAllClassesAndBuildsNoDriverList) {
  const Device device(NetworkAdapter());
  DWORD flags = 0;
  int sets = 0;
  HOOK(get, Module(), SetupDiGetClassDevsA, [&](const GUID* guid, const char* enumerator, HWND parent, DWORD asked) {
    EXPECT_EQ(guid, nullptr);
    EXPECT_EQ(enumerator, nullptr);
    flags = asked;
    ++sets;
    return get.Real(guid, enumerator, parent, asked);
  });
  HOOK(destroy, Module(), SetupDiDestroyDeviceInfoList, [&](HDEVINFO set) {
    --sets;
    return destroy.Real(set);
  });
  Devices();
  EXPECT_EQ(flags, DWORD{DIGCF_PRESENT | DIGCF_ALLCLASSES});
  EXPECT_EQ(sets, 0);
  EXPECT_THROW(test::ImportSlot(Module(), "SetupDiBuildDriverInfoList"), std::runtime_error);
}

TEST_F(PciInfo, ClosesEveryDriverKey) {
  const Device withDriver(NetworkAdapter());
  const Device withoutDriver(Named("PCI\\VEN_8086&DEV_7E4C\\1"));
  int keys = 0;
  HOOK(open, Module(), SetupDiOpenDevRegKey,
       [&](HDEVINFO set, SP_DEVINFO_DATA* device, DWORD scope, DWORD profile, DWORD type, REGSAM access) {
         EXPECT_EQ(type, DWORD{DIREG_DRV});
         const HKEY key = open.Real(set, device, scope, profile, type, access);
         if (key != INVALID_HANDLE_VALUE) ++keys;
         return key;
       });
  int closed = 0;
  HOOK(close, Module(), RegCloseKey, [&](HKEY key) {
    ++closed;
    return close.Real(key);
  });
  Devices();
  EXPECT_GE(keys, 1);
  EXPECT_EQ(closed, keys);
}

TEST_F(PciInfo, LeavesOutADeviceThatCannotBeRead) {
  const Device bad(NetworkAdapter());
  const Device good(Named("PCI\\VEN_8086&DEV_7E4C\\1"));
  HOOK(read, Module(), SetupDiGetDeviceInstanceIdA,
       [&](HDEVINFO set, SP_DEVINFO_DATA* device, char* text, DWORD size, DWORD* required) -> BOOL {
         const BOOL result = read.Real(set, device, text, size, required);
         if (std::string(text).find("15F3") == std::string::npos) return result;
         SetLastError(ERROR_NO_SUCH_DEVINST);
         return FALSE;
       });
  EXPECT_THAT(Identities(), ElementsAre("8086-7E4C-0000-0000"));
  const auto lines = log.Take();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].level, 2);
  EXPECT_THAT(lines[0].text, testing::StartsWith("A device cannot be read, error "));
}

TEST_F(PciInfo, ReportsNothingWhenDevicesCannotBeListed) {
  HOOK(get, Module(), SetupDiGetClassDevsA, [](auto...) -> HDEVINFO {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
  });
  EXPECT_THAT(Devices(), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(test::LogLine{2, "The devices cannot be listed, error 5"}));
}

TEST_F(PciInfo, BoundsPropertiesByTheirSize) {
  const Device device(NetworkAdapter());
  HOOK(read, Module(), SetupDiGetDeviceRegistryPropertyA,
       [&](HDEVINFO, SP_DEVINFO_DATA*, DWORD property, DWORD*, BYTE* bytes, DWORD size, DWORD* required) -> BOOL {
         std::fill(bytes, bytes + size, static_cast<BYTE>('x'));
         // More than there is room for, and no terminator.
         *required = property == SPDRP_MFG ? 0xFFFFFFFF : 3;
         return TRUE;
       });
  const auto devices = Devices();
  ASSERT_FALSE(devices.empty());
  EXPECT_EQ(devices[0].description, "xxx");
  EXPECT_THAT(devices[0].list, ElementsAre("xxx"));
  EXPECT_EQ(devices[0].provider, std::string(1024, 'x'));
}

TEST_F(PciInfo, GivesUpOnAPropertyThatNeverFits) {
  const Device device(NetworkAdapter());
  HOOK(read, Module(), SetupDiGetDeviceRegistryPropertyA,
       [&](HDEVINFO, SP_DEVINFO_DATA*, DWORD, DWORD*, BYTE*, DWORD size, DWORD* required) -> BOOL {
         *required = size;
         SetLastError(ERROR_INSUFFICIENT_BUFFER);
         return FALSE;
       });
  const auto devices = Devices();
  ASSERT_FALSE(devices.empty());
  EXPECT_EQ(devices[0].description, "");
}

}  // namespace
