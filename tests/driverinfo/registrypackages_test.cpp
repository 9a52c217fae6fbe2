#include <gmock/gmock.h>

#include "devicediscovery.h"
#include "importhook.h"
#include "locales.h"
#include "logcapture.h"
#include "records.h"
#include "scratchmachine.h"

using namespace Orvane;
using test::Described;
using test::LogLine;
using test::RegistryKey;
using test::RegistryValue;
using test::ThisProgram;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char IntelKey[] = "SOFTWARE\\Intel\\InfInst";
constexpr char AmdKey[] = "SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers";
constexpr char PshedKey[] = "SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver";

class RegistryPackages : public test::ScratchMachine {
 protected:
  std::vector<DriverData> drivers;
  test::LogCapture log;
};

TEST_F(RegistryPackages, AreNotThereOnABareMachine) {
  EXPECT_FALSE(DetectIntelChipset(drivers));
  EXPECT_FALSE(DetectAmdChipset(drivers));
  EXPECT_FALSE(DetectAmdPshedPlugin(drivers));
  EXPECT_THAT(Described(drivers), IsEmpty());
  EXPECT_THAT(
      log.Take(),
      ElementsAre(LogLine{1, "Failed to open SOFTWARE\\Intel\\InfInst\\ in HKEY_LOCAL_MACHINE"},
                  LogLine{1, "Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in HKEY_LOCAL_MACHINE"},
                  LogLine{1,
                          "Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\ in "
                          "HKEY_LOCAL_MACHINE"}));
}

TEST_F(RegistryPackages, AreReportedWithTheVersionOfTheirInstaller) {
  const RegistryValue intel(IntelKey, "Version", REG_SZ, "10.1.18793.8276");
  const RegistryValue amd(AmdKey, "ProductVersion", REG_SZ, "6.05.28.016");
  const RegistryValue pshed(PshedKey, "ProductVersion", REG_SZ, "1.0.0.23");
  EXPECT_TRUE(DetectIntelChipset(drivers));
  EXPECT_TRUE(DetectAmdChipset(drivers));
  EXPECT_TRUE(DetectAmdPshedPlugin(drivers));
  EXPECT_THAT(Described(drivers),
              ElementsAre("name=intel_chipset; description=Intel chipset Driver; provider=Intel; "
                          "file_version=10.1.18793.8276; found_by_device=0",
                          "name=amd_chipset; description=Amd chipset Driver; provider=Amd; file_version=6.05.28.016; "
                          "found_by_device=0",
                          "name=amd_ppd; description=Amd EPYC SP3 PSHED Plug-in Driver; provider=Amd; "
                          "file_version=1.0.0.23; found_by_device=0"));
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{4, "success to get amd chipset."},
                                      LogLine{4, "success to get AMD EPYC SP3 PSHED Plug-in Driver."}));
}

TEST_F(RegistryPackages, WithoutTheirValueAreNotThere) {
  const RegistryKey intel(IntelKey);
  const RegistryKey amd(AmdKey);
  const RegistryKey pshed(PshedKey);
  EXPECT_FALSE(DetectIntelChipset(drivers));
  EXPECT_FALSE(DetectAmdChipset(drivers));
  EXPECT_FALSE(DetectAmdPshedPlugin(drivers));
  EXPECT_THAT(Described(drivers), IsEmpty());
  EXPECT_THAT(log.Take(),
              ElementsAre(LogLine{1,
                                  "Failed to query SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in "
                                  "HKEY_LOCAL_MACHINE, retStatus = 2"},
                          LogLine{1,
                                  "Failed to query SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\ in "
                                  "HKEY_LOCAL_MACHINE, retStatus = 2"}));
}

TEST_F(RegistryPackages, WithAValueThatDoesNotFitAreNotThere) {
  const RegistryValue intel(IntelKey, "Version", REG_BINARY, std::string(1025, '1'));
  const RegistryValue amd(AmdKey, "ProductVersion", REG_BINARY, std::string(1025, '1'));
  EXPECT_FALSE(DetectIntelChipset(drivers));
  EXPECT_FALSE(DetectAmdChipset(drivers));
  EXPECT_THAT(Described(drivers), IsEmpty());
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{1,
                                              "Failed to query SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in "
                                              "HKEY_LOCAL_MACHINE, retStatus = 234"}));
}

TEST_F(RegistryPackages, WithAValueThatFillsTheBufferEndThere) {
  const RegistryValue intel(IntelKey, "Version", REG_BINARY, std::string(1024, '1'));
  EXPECT_TRUE(DetectIntelChipset(drivers));
  EXPECT_EQ(drivers.at(0).file_version, std::string(1024, '1'));
}

TEST_F(RegistryPackages, WithANumberHaveItsBytesAsVersion) {
  const RegistryValue intel(IntelKey, "Version", REG_DWORD, std::string("\x31\x32\x00\x33", 4));
  EXPECT_TRUE(DetectIntelChipset(drivers));
  EXPECT_EQ(drivers.at(0).file_version, "12");
}

TEST_F(RegistryPackages, AmdRenamesItsComponentsAlsoWithoutItsKey) {
  drivers.resize(1);
  drivers[0].name = "AMDI-0030-0000-0000_nodriver#";
  EXPECT_FALSE(DetectAmdChipset(drivers));
  EXPECT_THAT(Described(drivers),
              ElementsAre("name=AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000; file_version=N/A; found_by_device=0"));
  EXPECT_THAT(
      log.Take(),
      ElementsAre(
          LogLine{3, "find AMDI-0030-0000-0000_nodriver#"},
          LogLine{1, "Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in HKEY_LOCAL_MACHINE"}));
}

TEST_F(RegistryPackages, AreReadIn64BitViewAndTheirKeysStayOpen) {
  const RegistryValue intel(IntelKey, "Version", REG_SZ, "1");
  const RegistryKey amd(AmdKey);
  std::vector<std::string> calls;
  HOOK(open, ThisProgram(), RegOpenKeyExA, [&](HKEY root, const char* path, DWORD options, REGSAM access, HKEY* key) {
    calls.push_back("open " + std::string(path) + (root == HKEY_LOCAL_MACHINE ? " HKLM " : " elsewhere ") +
                    std::to_string(options) + " " + std::to_string(access));
    return open.Real(root, path, options, access, key);
  });
  HOOK(query, ThisProgram(), RegQueryValueExA,
       [&](HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
         calls.push_back(
             "query " + std::string(name) + " type " + std::to_string(*type) + " size " + std::to_string(*size) +
             (std::string(1024, '\0') == std::string(reinterpret_cast<char*>(data), 1024) ? " zeros" : " filled"));
         EXPECT_EQ(reserved, nullptr);
         return query.Real(key, name, reserved, type, data, size);
       });
  HOOK(close, ThisProgram(), RegCloseKey, [&](HKEY) -> LSTATUS {
    calls.push_back("close");
    return ERROR_SUCCESS;
  });
  DetectIntelChipset(drivers);
  DetectAmdChipset(drivers);
  DetectAmdPshedPlugin(drivers);
  EXPECT_THAT(calls,
              ElementsAre("open SOFTWARE\\Intel\\InfInst\\ HKLM 0 131353", "query Version type 1 size 1024 zeros",
                          "open SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ HKLM 0 131353",
                          "query ProductVersion type 1 size 1024 zeros",
                          "open SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\ HKLM 0 131353"));
}

TEST_F(RegistryPackages, LogTheirStatusWithoutGroupingDigits) {
  const RegistryKey amd(AmdKey);
  HOOK(query, ThisProgram(), RegQueryValueExA,
       [](HKEY, const char*, DWORD*, DWORD*, BYTE*, DWORD*) -> LSTATUS { return -12345; });
  const test::HostLocale<test::GroupedDigits> locale;
  DetectAmdChipset(drivers);
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{1,
                                              "Failed to query SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in "
                                              "HKEY_LOCAL_MACHINE, retStatus = -12345"}));
}

}  // namespace
