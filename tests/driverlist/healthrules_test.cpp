#include "healthrules.h"

#include <gmock/gmock.h>

#include "healthformats.h"

using namespace driverlist;
using Orvane::DriverData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A service that gives no rule anything to say.
DriverData Service(const std::string& file, const std::string& version = "1.0") {
  DriverData service;
  service.name = file;
  service.path = "C:\\windows\\system32\\drivers\\" + file;
  service.file_version = version;
  service.provider = "maker";
  service.state = "Running";
  service.start_type = "Automatic";
  return service;
}

DriverData Device(const std::string& name, const std::string& version) {
  DriverData device;
  device.name = name;
  device.file_version = version;
  device.provider = "maker";
  device.description = "thing";
  device.found_by_device = 1;
  return device;
}

std::vector<std::string> Told(const MachineFacts& facts) {
  std::vector<std::string> told;
  for (const Finding& finding : Examine(facts)) {
    told.push_back(finding.rule + " | " + finding.subject + " | " + finding.evidence);
  }
  return told;
}

TEST(Health, FindsNothingOnAHealthyMachine) {
  MachineFacts facts;
  EXPECT_THAT(Told(facts), IsEmpty());
  facts.devices = {Device("net.sys", "1.0"), Device("net_8086-15F3-1028-0A5C", "1.0"), Device("intel_chipset", "1")};
  facts.services = {Service("net.sys"), Service("disk.sys")};
  facts.packages = {{"oem1.inf", "1.0", "maker", {"net.sys"}}, {"oem2.inf", "7", "maker", {}}};
  facts.infsInUse = {"oem2.inf", "machine.inf"};
  EXPECT_THAT(Told(facts), IsEmpty());
}

TEST(Health, FindsDevicesWithoutDriver) {
  MachineFacts facts;
  facts.devices = {Device("8086-7E4C-1028-0A5C_nodriver#", "N/A"),
                   Device("AMD-VOKTA_AMDUART_0000-0000-0000-0000", "N/A"), Device("a.sys", "1")};
  facts.devices[1].provider.clear();
  EXPECT_THAT(Told(facts), ElementsAre("device-without-driver | 8086-7E4C-1028-0A5C_nodriver# | thing by maker",
                                       "device-without-driver | AMD-VOKTA_AMDUART_0000-0000-0000-0000 | thing"))
      << "such a device has no version either, which is no second finding";
}

TEST(Health, FindsDriversThatShouldRunAndDoNot) {
  MachineFacts facts;
  for (const char* const start : {"Boot Start", "System Start", "Automatic", "Manual", "Disabled", ""}) {
    facts.services.push_back(Service("a.sys"));
    facts.services.back().start_type = start;
    facts.services.back().state = "Stopped";
  }
  facts.services.push_back(Service("b.sys"));
  facts.services.back().state = "Start Pending";
  EXPECT_THAT(Told(facts),
              ElementsAre("not-running | a.sys | Boot Start, but Stopped: C:\\windows\\system32\\drivers\\a.sys",
                          "not-running | a.sys | System Start, but Stopped: C:\\windows\\system32\\drivers\\a.sys",
                          "not-running | a.sys | Automatic, but Stopped: C:\\windows\\system32\\drivers\\a.sys",
                          "not-running | b.sys | Automatic, but Start Pending: C:\\windows\\system32\\drivers\\b.sys"));
}

TEST(Health, TellsWhichImagesAreMissing) {
  MachineFacts facts;
  facts.missingImages = {{"vpn", "\\??\\C:\\vpn.sys", "C:\\vpn.sys"}, {"none", "", "C:\\windows\\none.sys"}};
  EXPECT_THAT(Told(facts),
              ElementsAre("image-missing | vpn | there is no C:\\vpn.sys, configured as \\??\\C:\\vpn.sys",
                          "image-missing | none | there is no C:\\windows\\none.sys, without a configured image"));
}

TEST(Health, FindsDriversWithoutVersionOrCompany) {
  MachineFacts facts;
  facts.services = {Service("a.sys", ""), Service("b.sys"), Service("c.sys", "")};
  facts.services[1].provider.clear();
  facts.services[2].provider.clear();
  facts.devices = {Device("d.sys", "")};
  EXPECT_THAT(Told(facts),
              ElementsAre("no-version-or-company | d.sys | no version",
                          "no-version-or-company | a.sys | no version: C:\\windows\\system32\\drivers\\a.sys",
                          "no-version-or-company | b.sys | no company: C:\\windows\\system32\\drivers\\b.sys",
                          "no-version-or-company | c.sys | no version, no company: "
                          "C:\\windows\\system32\\drivers\\c.sys"));
}

TEST(Health, FindsSeveralVersionsOfADriver) {
  MachineFacts facts;
  facts.services = {Service("Net.sys", "10.0"), Service("disk.sys", "1.0"), Service("quiet.sys", "")};
  facts.services[2].provider = "maker";
  facts.packages = {{"oem1.inf", "9.0", "maker", {"net.SYS", "disk.sys"}},
                    {"oem2.inf", "1.00", "maker", {"disk.sys"}},
                    {"oem3.inf", "5", "maker", {"quiet.sys"}}};
  facts.infsInUse = {"oem1.inf", "oem2.inf", "oem3.inf"};
  EXPECT_THAT(
      Told(facts),
      ElementsAre("no-version-or-company | quiet.sys | no version: C:\\windows\\system32\\drivers\\quiet.sys",
                  "several-versions | disk.sys | 1.0 in C:\\windows\\system32\\drivers\\disk.sys, 1.00 in "
                  "oem2.inf, 9.0 in oem1.inf",
                  "several-versions | net.sys | 9.0 in oem1.inf, 10.0 in C:\\windows\\system32\\drivers\\Net.sys"))
      << "1.0 and 1.00 are one version, and one that is not known is none";
}

TEST(Health, FindsPackagesThatNothingUses) {
  MachineFacts facts;
  facts.services = {Service("Net.sys")};
  facts.packages = {{"oem1.inf", "1.0", "maker", {"net.sys"}},
                    {"oem2.inf", "2.0", "maker", {"a.sys", "b.sys"}},
                    {"oem3.inf", "3.0", "maker", {}},
                    {"oem4.inf", "4.0", "maker", {}}};
  facts.infsInUse = {"oem4.inf"};
  EXPECT_THAT(Told(facts), ElementsAre("unused-package | oem2.inf | maker 2.0: no device has it, and no service runs a "
                                       "driver of it (a.sys, b.sys)",
                                       "unused-package | oem3.inf | maker 3.0: no device has it, and no service runs a "
                                       "driver of it (it lists none)"));
}

const std::vector<Finding> TwoFindings = {{"device-without-driver", "8086-7E4C-1028-0A5C_nodriver#",
                                           "Signal processing controller by Unknown maker, as the device says"},
                                          {"unused-package", "oem3.inf", "Ger\u00E4te"}};

TEST(HealthTable, TellsTheRuleAndTheEvidence) {
  EXPECT_EQ(FormatHealthTable(TwoFindings, {0, false}),
            "device-without-driver (devices that are present and have no driver): 1\n"
            "what                           evidence\n"
            "8086-7E4C-1028-0A5C_nodriver#  Signal processing controller by Unknown maker, as the device says\n"
            "\n"
            "unused-package (OEM packages that no device and no service uses): 1\n"
            "what      evidence\n"
            "oem3.inf  Ger\u00E4te\n");
}

TEST(HealthTable, WrapsEvidenceOnATerminalOf80Columns) {
  EXPECT_EQ(FormatHealthTable(TwoFindings, {79, false}),
            "device-without-driver (devices that are present and have no driver): 1\n"
            "what                           evidence\n"
            "8086-7E4C-1028-0A5C_nodriver#  Signal processing controller by Unknown maker,\n"
            "                               as the device says\n"
            "\n"
            "unused-package (OEM packages that no device and no service uses): 1\n"
            "what      evidence\n"
            "oem3.inf  Ger\u00E4te\n");
}

TEST(HealthTable, OfNothingSaysSo) { EXPECT_EQ(FormatHealthTable({}, {0, true}), "nothing found\n"); }

TEST(HealthJson, TellsCountsAndFindings) {
  EXPECT_EQ(FormatHealthJson({TwoFindings[1]}, {"host", "10.0.1", "0.1.0", "2024-05-06T07:08:09Z"}), R"({
  "schema_version": 1,
  "host": "host",
  "windows": "10.0.1",
  "tool_version": "0.1.0",
  "time": "2024-05-06T07:08:09Z",
  "summary": {
    "device-without-driver": 0,
    "not-running": 0,
    "image-missing": 0,
    "no-version-or-company": 0,
    "several-versions": 0,
    "unused-package": 1
  },
  "findings": [
    {
      "rule": "unused-package",
      "subject": "oem3.inf",
      "evidence": "Geräte"
    }
  ]
}
)");
}

}  // namespace
