#include "inventory/devices.h"

#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <initguid.h>
// Its keys are defined here, because of the header before.
#include <devpkey.h>
#include <setupapi.h>

#include <algorithm>

#include "codepage.h"
#include "importhook.h"
#include "logcapture.h"
#include "pciinfo.h"
#include "scratchmachine.h"

using namespace inventory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void SetDeviceProperty(const std::string& instanceId, const DEVPROPKEY& key, DEVPROPTYPE type, const void* bytes,
                       std::size_t size) {
  const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  ASSERT_TRUE(SetupDiOpenDeviceInfoA(set, instanceId.c_str(), nullptr, 0, &device));
  // Not every header declares it.
  const auto setProperty = reinterpret_cast<BOOL(WINAPI*)(HDEVINFO, SP_DEVINFO_DATA*, const DEVPROPKEY*, DEVPROPTYPE,
                                                          const BYTE*, DWORD, DWORD)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("setupapi.dll"), "SetupDiSetDevicePropertyW")));
  ASSERT_TRUE(setProperty(set, &device, &key, type, static_cast<const BYTE*>(bytes), static_cast<DWORD>(size), 0));
  SetupDiDestroyDeviceInfoList(set);
}

test::DeviceSettings Settings(const std::string& instanceId) {
  test::DeviceSettings settings;
  settings.instanceId = instanceId;
  settings.description = "Some device";
  settings.manufacturer = "Some maker";
  settings.className = "Net";
  settings.hardwareIds = {instanceId.substr(0, instanceId.rfind('\\'))};
  return settings;
}

template <typename Facts>
Facts Found(const std::vector<Facts>& all, const std::string& instanceId) {
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Facts& facts) { return facts.instance_id == instanceId; });
  EXPECT_NE(found, all.end()) << instanceId;
  return found == all.end() ? Facts() : *found;
}

using DevicesOfAMachine = test::ScratchMachine;

TEST_F(DevicesOfAMachine, AreThoseOfTheDeviceInventory) {
  test::DeviceSettings settings = Settings("PCI\\VEN_1234&DEV_5678&SUBSYS_00019ABC&REV_01\\OI1");
  settings.friendlyName = "Some card #2";
  settings.service = "oinet";
  settings.package = test::InstalledPackage{"oem9001.inf", "1.2.3.4", "5-17-2023"};
  const test::Device device(settings);
  const DeviceFacts facts = Found(ReadPresentDevices(), settings.instanceId);
  EXPECT_EQ(facts.hardware_id, "PCI\\VEN_1234&DEV_5678&SUBSYS_00019ABC&REV_01");
  EXPECT_EQ(facts.description, "Some device");
  EXPECT_EQ(facts.friendly_name, "Some card #2");
  EXPECT_EQ(facts.manufacturer, "Some maker");
  EXPECT_EQ(facts.class_name, "Net");
  EXPECT_EQ(facts.service, "oinet");
  EXPECT_EQ(facts.vendor_id + "-" + facts.device_id + "-" + facts.identity_part3 + "-" + facts.identity_part4,
            "1234-5678-9ABC-0001");
  EXPECT_EQ(facts.inf, "oem9001.inf");
  EXPECT_EQ(facts.version, "1.2.3.4");
  EXPECT_EQ(facts.date, "5-17-2023");
}

TEST_F(DevicesOfAMachine, OfAnyBusHaveTheInfsThatInstalledAndExtendThem) {
  test::DeviceSettings settings = Settings("USB\\VID_1234&PID_5678\\OI1");
  settings.package = test::InstalledPackage{"OEM9001.inf", "1.0", "1-2-2023"};
  const test::Device device(settings);
  using namespace std::string_literals;
  const std::wstring extensions = L"oem9002.inf:USB\\VID_1234,Ext,01/02/2023,1.0\0OEM9003.INF:x\0\0"s;
  SetDeviceProperty(settings.instanceId, DEVPKEY_Device_ExtendedConfigurationIds, DEVPROP_TYPE_STRING_LIST,
                    extensions.data(), extensions.size() * sizeof(wchar_t));
  const test::Device bare(Settings("PCI\\VEN_1234&DEV_5678\\OI2"));
  const std::vector<DeviceNode> nodes = ReadDeviceNodes();
  EXPECT_THAT(Found(nodes, settings.instanceId).infs, ElementsAre("oem9002.inf", "OEM9003.INF", "OEM9001.inf"));
  EXPECT_THAT(Found(nodes, "PCI\\VEN_1234&DEV_5678\\OI2").infs, IsEmpty());
}

TEST_F(DevicesOfAMachine, HaveTheProblemThatWindowsReports) {
  const test::Device broken(Settings("PCI\\VEN_1234&DEV_5678\\OI1"));
  const test::Device fine(Settings("PCI\\VEN_1234&DEV_5678\\OI2"));
  const test::Device unasked(Settings("PCI\\VEN_1234&DEV_5678\\OI3"));
  const std::uint32_t code = 43;
  const std::uint32_t noProblem = 0;
  SetDeviceProperty("PCI\\VEN_1234&DEV_5678\\OI1", DEVPKEY_Device_ProblemCode, DEVPROP_TYPE_UINT32, &code, 4);
  SetDeviceProperty("PCI\\VEN_1234&DEV_5678\\OI2", DEVPKEY_Device_ProblemCode, DEVPROP_TYPE_UINT32, &noProblem, 4);
  const std::vector<DeviceNode> nodes = ReadDeviceNodes();
  EXPECT_EQ(Found(nodes, "PCI\\VEN_1234&DEV_5678\\OI1").problem_code, 43u);
  EXPECT_EQ(Found(nodes, "PCI\\VEN_1234&DEV_5678\\OI2").problem_code, std::nullopt);
  EXPECT_EQ(Found(nodes, "PCI\\VEN_1234&DEV_5678\\OI3").problem_code, std::nullopt);
}

TEST(Devices, AreInUtf8WhateverTheCodePageOfTheDeviceInventory) {
  HOOK(list, test::ThisProgram(), GetPciInfo, [](std::vector<Orvane::PciDeviceRecord>& devices) {
    Orvane::PciDeviceRecord& device = devices.emplace_back();
    for (const auto& [text, number] :
         {std::pair(&device.text4, "1"), std::pair(&device.text3, "2"), std::pair(&device.description, "3"),
          std::pair(&device.text14, "4"), std::pair(&device.provider, "5"), std::pair(&device.text7, "6"),
          std::pair(&device.text11, "7"), std::pair(&device.vendor_id, "8"), std::pair(&device.device_id, "9"),
          std::pair(&device.identity_part3, "10"), std::pair(&device.identity_part4, "11"),
          std::pair(&device.inf_name, "12"), std::pair(&device.text12, "13"), std::pair(&device.text13, "14")}) {
      *text = std::string("\xE4") + number;
    }
  });
  const test::WesternCodePage western;
  const std::vector<DeviceFacts> devices = ReadPresentDevices();
  ASSERT_EQ(devices.size(), 1u);
  const DeviceFacts& facts = devices.front();
  std::vector<std::string> texts = {
      facts.instance_id,    facts.hardware_id, facts.description, facts.friendly_name, facts.manufacturer,
      facts.class_name,     facts.service,     facts.vendor_id,   facts.device_id,     facts.identity_part3,
      facts.identity_part4, facts.inf,         facts.version,     facts.date};
  for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(texts[i], "\u00E4" + std::to_string(i + 1));
}

TEST(Devices, AreListedWhetherTheyArePresentOrNot) {
  DWORD flags = 0;
  HOOK(list, test::ThisProgram(), SetupDiGetClassDevsW,
       [&](const GUID* guid, const wchar_t* enumerator, HWND window, DWORD which) {
         flags = which;
         return list.Real(guid, enumerator, window, which);
       });
  ReadDeviceNodes();
  EXPECT_EQ(flags, static_cast<DWORD>(DIGCF_ALLCLASSES)) << "a device that is away keeps its package";
}

TEST(Devices, AreNotThereWhereWindowsDoesNotListThem) {
  HOOK(noSet, test::ThisProgram(), SetupDiGetClassDevsW, [](const GUID*, const wchar_t*, HWND, DWORD) -> HDEVINFO {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
  });
  test::LogCapture log;
  EXPECT_THAT(ReadDeviceNodes(), IsEmpty());
  const auto lines = log.Take();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].level, 2);
  EXPECT_THAT(lines[0].text, testing::StartsWith("The devices cannot be listed: "));
}

TEST_F(DevicesOfAMachine, HaveNoExtensionWhosePropertyIsAnotherThing) {
  const test::Device device(Settings("PCI\\VEN_1234&DEV_5678\\OI1"));
  HOOK(properties, test::ThisProgram(), SetupDiGetDevicePropertyW,
       [](HDEVINFO, SP_DEVINFO_DATA*, const DEVPROPKEY*, DEVPROPTYPE* type, BYTE* buffer, DWORD size, DWORD*,
          DWORD) -> BOOL {
         // A full buffer without any terminator.
         std::fill(buffer, buffer + size, BYTE{'a'});
         *type = size > 4 ? DEVPROP_TYPE_STRING_LIST : DEVPROP_TYPE_STRING;
         return TRUE;
       });
  const DeviceNode node = Found(ReadDeviceNodes(), "PCI\\VEN_1234&DEV_5678\\OI1");
  ASSERT_EQ(node.infs.size(), 1u);
  EXPECT_EQ(node.infs[0].size(), (std::size_t{1} << 15) * 3 - 6) << "each of the characters is three bytes of UTF-8";
  EXPECT_EQ(node.problem_code, std::nullopt);
}

}  // namespace
