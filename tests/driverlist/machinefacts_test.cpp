#include "machinefacts.h"

#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <initguid.h>
// Its keys are defined here, because of the header before.
#include <devpkey.h>
#include <setupapi.h>

#include "scratchmachine.h"

using namespace driverlist;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

std::wstring Image(const std::wstring& configured) { return ImagePath(configured, L"svc", L"C:\\Windows"); }

TEST(ImagePath, IsWhatTheKernelMakesOfIt) {
  EXPECT_EQ(Image(L""), L"C:\\Windows\\System32\\drivers\\svc.sys");
  EXPECT_EQ(Image(L"\\SystemRoot\\System32\\drivers\\a.sys"), L"C:\\Windows\\System32\\drivers\\a.sys");
  EXPECT_EQ(Image(L"\\systemroot\\a.sys"), L"C:\\Windows\\a.sys");
  EXPECT_EQ(Image(L"System32\\drivers\\a.sys"), L"C:\\Windows\\System32\\drivers\\a.sys");
  EXPECT_EQ(Image(L"\\??\\C:\\Program Files\\a.sys"), L"C:\\Program Files\\a.sys");
  EXPECT_EQ(Image(L"D:\\a.sys"), L"D:\\a.sys");
  EXPECT_EQ(Image(L"\\Device\\HarddiskVolume1\\a.sys"), L"") << "a path of the kernel alone";
}

TEST(ImagePath, HasItsVariablesExpanded) {
  const test::EnvironmentVariable variable("DRIVERINFO_TEST", "D:\\drivers");
  EXPECT_EQ(Image(L"%DRIVERINFO_TEST%\\a.sys"), L"D:\\drivers\\a.sys");
  EXPECT_EQ(Image(L"%DRIVERINFO_NO_SUCH%"), L"C:\\Windows\\%DRIVERINFO_NO_SUCH%");
}

std::string DriverPath(const std::string& file) { return test::SystemDirectory() + "\\drivers\\" + file; }

using MachineFactsOfAMachine = test::ScratchMachine;

std::vector<std::string> MissingServices(const MachineFacts& facts) {
  std::vector<std::string> told;
  for (const MissingImage& missing : facts.missingImages) {
    if (missing.service.compare(0, 2, "Oi") == 0) told.push_back(missing.service + " " + missing.configured);
  }
  return told;
}

TEST_F(MachineFactsOfAMachine, TellMissingImages) {
  const test::ScratchFile image(DriverPath("OiThere.sys"), 4096);
  const test::DriverService there("OiThere", "\\SystemRoot\\System32\\drivers\\OiThere.sys");
  const test::DriverService byName("OiGone", "");
  // The library finds the image of that name in the folder of drivers.
  const test::DriverService elsewhere("OiElsewhere", "\\??\\C:\\elsewhere\\OiThere.sys");
  const MachineFacts facts = CollectFacts();
  EXPECT_THAT(MissingServices(facts),
              testing::UnorderedElementsAre("OiElsewhere \\??\\C:\\elsewhere\\OiThere.sys", "OiGone "));
  std::vector<std::string> listed;
  for (const auto& service : facts.services) listed.push_back(service.name);
  EXPECT_THAT(listed, Contains("OiThere.sys"));
}

TEST_F(MachineFactsOfAMachine, KeepChipsetPackagesOutOfTheServices) {
  const test::RegistryValue chipset("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1");
  const MachineFacts facts = CollectFacts();
  std::vector<std::string> devices;
  for (const auto& device : facts.devices) devices.push_back(device.name);
  EXPECT_THAT(devices, Contains("intel_chipset"));
  for (const auto& service : facts.services) EXPECT_NE(service.path, "") << service.name;
}

TEST_F(MachineFactsOfAMachine, TellOemPackagesInTheOrderOfTheirNumbers) {
  const std::vector<std::string> package = {"[Version]",          "Signature=\"$WINDOWS NT$\"",
                                            "Provider=%Maker%",   "DriverVer=01/02/2023,1.2.3.4",
                                            "[SourceDisksFiles]", "OiNet.sys=1",
                                            "oinet.dll=1",        "[SourceDisksFiles.amd64]",
                                            "OiNet.sys=1",        "OiExtra.SYS=1",
                                            "[Strings]",          "Maker=\"Some maker\""};
  const test::ScratchFile ten(test::InfDirectory() + "\\oem9010.inf", package);
  const test::ScratchFile two(test::InfDirectory() + "\\OEM9002.inf",
                              std::vector<std::string>{"[Version]", "Signature=\"$WINDOWS NT$\""});
  const test::ScratchFile none(test::InfDirectory() + "\\oem9003.inf", std::size_t{0});
  std::vector<OemPackage> packages;
  for (const OemPackage& found : CollectFacts().packages) {
    if (found.inf.compare(0, 5, "oem90") == 0 && found.inf != "oem9003.inf") packages.push_back(found);
  }
  ASSERT_EQ(packages.size(), 2u);
  EXPECT_EQ(packages[0].inf, "oem9002.inf");
  EXPECT_EQ(packages[0].version, "");
  EXPECT_THAT(packages[0].drivers, testing::IsEmpty());
  EXPECT_EQ(packages[1].inf, "oem9010.inf");
  EXPECT_EQ(packages[1].version, "1.2.3.4");
  EXPECT_EQ(packages[1].provider, "Some maker");
  EXPECT_THAT(packages[1].drivers, ElementsAre("OiNet.sys", "OiExtra.SYS"));
}

void ExtendDevice(const std::string& instanceId, const std::wstring& texts) {
  const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  ASSERT_TRUE(SetupDiOpenDeviceInfoA(set, instanceId.c_str(), nullptr, 0, &device));
  // Not every header declares it.
  const auto setProperty = reinterpret_cast<BOOL(WINAPI*)(HDEVINFO, SP_DEVINFO_DATA*, const DEVPROPKEY*, DEVPROPTYPE,
                                                          const BYTE*, DWORD, DWORD)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("setupapi.dll"), "SetupDiSetDevicePropertyW")));
  ASSERT_TRUE(setProperty(set, &device, &DEVPKEY_Device_ExtendedConfigurationIds, DEVPROP_TYPE_STRING_LIST,
                          reinterpret_cast<const BYTE*>(texts.data()),
                          static_cast<DWORD>(texts.size() * sizeof(wchar_t)), 0));
  SetupDiDestroyDeviceInfoList(set);
}

TEST_F(MachineFactsOfAMachine, TellWhichInfsDevicesUse) {
  test::DeviceSettings settings;
  settings.instanceId = "USB\\VID_1234&PID_5678\\OI1";
  settings.className = "HIDClass";
  settings.package = test::InstalledPackage{"OEM9001.inf", "1.0", "1-2-2023"};
  const test::Device device(settings);
  using namespace std::string_literals;
  ExtendDevice(settings.instanceId, L"oem9002.inf:USB\\VID_1234,Ext,01/02/2023,1.0\0OEM9003.INF:x\0\0"s);
  test::DeviceSettings bare = settings;
  bare.instanceId = "PCI\\VEN_1234&DEV_5678\\OI2";
  bare.package.reset();
  const test::Device bareDevice(bare);
  const std::vector<std::string> infs = CollectFacts().infsInUse;
  EXPECT_THAT(infs, Contains("oem9001.inf")) << "devices of any bus";
  EXPECT_THAT(infs, Contains("oem9002.inf"));
  EXPECT_THAT(infs, Contains("oem9003.inf"));
  EXPECT_THAT(infs, Not(Contains("")));
}

}  // namespace
