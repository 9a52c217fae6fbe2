#include "inventory/healthrules.h"

#include <gmock/gmock.h>

using namespace inventory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A running service, about which no rule has anything to say.
Record Service(const std::string& name, const std::string& path, const std::string& version = "1.0") {
  Record service;
  service.kind = Kind::Service;
  service.name = path.substr(path.rfind('\\') + 1);
  service.service = name;
  service.path = path;
  service.version = version;
  service.provider = "maker";
  service.state = "Running";
  service.start_type = "Automatic";
  return service;
}

/// A device with a driver.
Record Device(const std::string& name) {
  Record device;
  device.kind = Kind::Device;
  device.name = name;
  device.description = "thing";
  device.provider = "maker";
  device.version = "1.0";
  device.inf = "oem1.inf";
  return device;
}

Record DeviceWithoutDriver(const std::string& name) {
  Record device = Device(name);
  device.version.clear();
  device.inf.clear();
  return device;
}

Record Package(const std::string& inf, const std::string& version, const std::vector<std::string>& files,
               std::uint64_t devicesUsing) {
  Record package;
  package.kind = Kind::Package;
  package.name = inf;
  package.inf = inf;
  package.provider = "maker";
  package.version = version;
  package.files = files;
  package.devices_using = devicesUsing;
  return package;
}

std::vector<std::string> Found(const Records& records) {
  std::vector<std::string> texts;
  for (const Finding& finding : Examine(records)) {
    texts.push_back(finding.rule + " | " + finding.subject + " | " + finding.evidence);
  }
  return texts;
}

TEST(Health, FindsNothingOnAHealthyMachine) {
  EXPECT_THAT(Found({}), IsEmpty());
  Record chipset;
  chipset.kind = Kind::Chipset;
  EXPECT_THAT(
      Found({Service("net", "C:\\Windows\\net.sys"), Service("disk", "C:\\Windows\\disk.sys"), Device("net.sys"),
             Package("oem1.inf", "1.0", {"net.sys", "net.dll"}, 0), Package("oem2.inf", "7", {}, 1), chipset}),
      IsEmpty());
}

TEST(Health, FindsDevicesWithoutDriver) {
  Record signal = DeviceWithoutDriver("8086-7E4C-1028-0A5C_nodriver#");
  Record serial = DeviceWithoutDriver("AMD-VOKTA_AMDUART_0000-0000-0000-0000");
  serial.provider.clear();
  serial.problem_code = 28;
  Record nameless = DeviceWithoutDriver("1022-0001-0000-0000_nodriver#");
  nameless.identity = "1022-0001-0000-0000";
  nameless.description.clear();
  nameless.problem_code = 5000;
  EXPECT_THAT(
      Found({signal, Device("net.sys"), serial, nameless}),
      ElementsAre("device-problem | AMD-VOKTA_AMDUART_0000-0000-0000-0000 | problem 28 (CM_PROB_FAILED_INSTALL): "
                  "thing",
                  "device-problem | 1022-0001-0000-0000_nodriver# | problem 5000: 1022-0001-0000-0000 by maker",
                  "device-without-driver | 8086-7E4C-1028-0A5C_nodriver# | thing by maker",
                  "device-without-driver | AMD-VOKTA_AMDUART_0000-0000-0000-0000 | thing, problem 28 "
                  "(CM_PROB_FAILED_INSTALL)",
                  "device-without-driver | 1022-0001-0000-0000_nodriver# | 1022-0001-0000-0000 by maker, "
                  "problem 5000"))
      << "such a device has no version either, which is no second finding";
}

TEST(Health, ReportsOneOfSeveralEqualDevicesForEachOfThem) {
  EXPECT_EQ(Examine({DeviceWithoutDriver("a_nodriver#"), DeviceWithoutDriver("a_nodriver#")}).size(), 2u);
}

TEST(Health, FindsServicesThatShouldRunAndDoNot) {
  Records records;
  for (const char* const start : {"Boot Start", "System Start", "Automatic", "Manual", "Disabled", ""}) {
    records.push_back(Service(start + std::string(" service"), "C:\\Windows\\a.sys"));
    records.back().start_type = start;
    records.back().state = "Stopped";
  }
  records.push_back(Service("starting", "C:\\Windows\\b.sys"));
  records.back().state = "Start Pending";
  records.push_back(Service("unknown", "C:\\Windows\\c.sys"));
  records.back().state.clear();
  EXPECT_THAT(Found(records),
              ElementsAre("not-running | Boot Start service | Boot Start, but Stopped: C:\\Windows\\a.sys",
                          "not-running | System Start service | System Start, but Stopped: C:\\Windows\\a.sys",
                          "not-running | Automatic service | Automatic, but Stopped: C:\\Windows\\a.sys",
                          "not-running | starting | Automatic, but Start Pending: C:\\Windows\\b.sys",
                          "not-running | unknown | Automatic, but in an unknown state: C:\\Windows\\c.sys"));
}

TEST(Health, FindsMissingImages) {
  Record vpn = Service("vpn", "C:\\Program Files\\vpn.sys", "");
  vpn.provider.clear();
  vpn.image_missing = true;
  EXPECT_THAT(Found({vpn, Service("net", "C:\\Windows\\net.sys")}),
              ElementsAre("image-missing | vpn | the configured image C:\\Program Files\\vpn.sys does not exist"))
      << "what is missing has no version and no company, which is no second finding";
}

TEST(Health, FindsDriversWithoutVersionOrCompany) {
  Records records = {Service("a", "C:\\Windows\\a.sys", ""), Service("b", "C:\\Windows\\b.sys"),
                     Service("c", "C:\\Windows\\c.sys", "N/A"), Device("d.sys"), Package("oem1.inf", "", {}, 1)};
  records[1].provider.clear();
  records[2].provider.clear();
  records[3].version.clear();
  records[4].provider.clear();
  EXPECT_THAT(Found(records), ElementsAre("no-version-or-company | a | no version: C:\\Windows\\a.sys",
                                          "no-version-or-company | b | no company: C:\\Windows\\b.sys",
                                          "no-version-or-company | c | no version, no company: C:\\Windows\\c.sys",
                                          "no-version-or-company | d.sys | no version: oem1.inf"));
}

TEST(Health, FindsSeveralVersionsOfADriver) {
  EXPECT_THAT(
      Found({Service("net", "C:\\Windows\\new\\Net.sys", "10.0"), Service("disk", "C:\\Windows\\disk.sys", "1.0"),
             Package("oem1.inf", "9.0", {"net.SYS", "disk.sys"}, 1), Package("oem2.inf", "1.00", {"disk.sys"}, 1)}),
      ElementsAre("several-versions | disk.sys | 1.0 in C:\\Windows\\disk.sys, 1.00 in oem2.inf, 9.0 in oem1.inf",
                  "several-versions | net.sys | 9.0 in oem1.inf, 10.0 in C:\\Windows\\new\\Net.sys"));
}

TEST(Health, FindsSeveralVersionsAmongServicesOnly) {
  EXPECT_THAT(
      Found({Service("new", "C:\\Windows\\new\\net.sys", "10.0"), Service("old", "C:\\Windows\\old\\net.sys", "9.0")}),
      ElementsAre("several-versions | net.sys | 9.0 in C:\\Windows\\old\\net.sys, 10.0 in C:\\Windows\\new\\net.sys"));
}

TEST(Health, TakesEquivalentVersionsForOne) {
  EXPECT_THAT(Found({Service("net", "C:\\Windows\\net.sys", "1.0"), Service("net2", "C:\\Windows\\net.sys", "1.0"),
                     Package("oem1.inf", "1.00", {"net.sys"}, 1)}),
              IsEmpty());
}

TEST(Health, ComparesNoVersionThatIsUnknownOrOfAnotherKindOfFile) {
  Record missing = Service("gone", "C:\\Windows\\gone.sys", "");
  missing.image_missing = true;
  missing.start_type = "Manual";
  const Records records = {missing, Package("oem1.inf", "5", {"gone.sys", "setup.dll"}, 1),
                           Package("oem2.inf", "6", {"setup.dll"}, 1), Package("oem3.inf", "", {"gone.sys"}, 1),
                           Package("netrtl.inf", "7", {"gone.sys"}, 1)};
  EXPECT_THAT(Found(records), ElementsAre(testing::StartsWith("image-missing | gone | ")));
}

TEST(Health, FindsPackagesThatNothingUses) {
  Record delivered = Package("oem2.inf", "2.0", {"a.sys", "a.dll", "B.SYS"}, 0);
  delivered.original_inf = "scanner.inf";
  Record other = Package("oem3.inf", "3.0", {"a.dll"}, 0);
  other.original_inf = "OEM3.inf";
  Record unknown = Package("oem6.inf", "6.0", {}, 0);
  unknown.devices_using.reset();
  Record bare = Package("oem7.inf", "", {}, 0);
  bare.provider.clear();
  EXPECT_THAT(
      Found({Service("net", "C:\\Windows\\Net.sys"), Package("oem1.inf", "1.0", {"net.dll", "net.sys"}, 0), delivered,
             other, Package("oem4.inf", "4.0", {}, 2), Package("netrtl.inf", "5.0", {}, 0), unknown, bare}),
      ElementsAre("unused-package | oem2.inf | scanner.inf, maker, 2.0: no device uses it, and no service loads any of "
                  "its files (a.sys, B.SYS)",
                  "unused-package | oem3.inf | maker, 3.0: no device uses it, and no service loads any of its files "
                  "(it lists no .sys file)",
                  "unused-package | oem7.inf | no device uses it, and no service loads any of its files (it lists "
                  "no .sys file)"))
      << "a package that came with Windows is no clutter, and one whose devices are unknown may have some";
}

/// An image that was verified.
Record Verified(const std::string& name, const char* signature, const std::string& signer = "") {
  Record service = Service(name, "C:\\Windows\\" + name + ".sys");
  service.sha256 = "12ab";
  service.signature = signature;
  service.signer = signer;
  return service;
}

Record Known(const std::string& name, trust::Category category, trust::MatchKind kind) {
  Record service = Verified(name, "valid", "Maker");
  service.known = {{"List", "1234", "evil.sys", category, kind, {"CVE-2024-1"}}};
  return service;
}

TEST(Health, FindsWhatSignaturesSay) {
  Record broken = Verified("broken", "invalid", "Maker");
  broken.signature_problem = "The digest is wrong. (0x80096010)";
  EXPECT_THAT(
      Found({Verified("good", "valid", "Maker"), broken, Verified("bare", "unsigned"), Verified("odd", "unknown")}),
      ElementsAre("signature-invalid | broken | The digest is wrong. (0x80096010): C:\\Windows\\broken.sys, signed "
                  "by Maker (invalid), SHA-256 12ab",
                  "unsigned | bare | C:\\Windows\\bare.sys, SHA-256 12ab"));
}

TEST(Health, FindsWhatListsKnow) {
  using trust::Category;
  using trust::MatchKind;
  Record both = Known("both", Category::Vulnerable, MatchKind::ImageHash);
  both.known.push_back({"Other", "5", "", Category::Malicious, MatchKind::SignerRule, {}});
  both.known.push_back({"Other", "6", "", Category::Vulnerable, MatchKind::NameAndVersion, {}});
  EXPECT_THAT(Found({Known("hint", Category::Malicious, MatchKind::NameAndVersion),
                     Known("weak", Category::Vulnerable, MatchKind::SignerRule), both}),
              ElementsAre("known-malicious | both | listed by List as evil.sys (1234), image-hash, CVE-2024-1; listed "
                          "by Other as (5), signer-rule: "
                          "C:\\Windows\\both.sys, signed by Maker (valid), SHA-256 12ab",
                          "known-vulnerable | weak | listed by List as evil.sys (1234), signer-rule, CVE-2024-1: "
                          "C:\\Windows\\weak.sys, "
                          "signed by "
                          "Maker (valid), SHA-256 12ab",
                          "listed-name | hint | listed by List as evil.sys (1234), name-and-version, CVE-2024-1: "
                          "C:\\Windows\\hint.sys, "
                          "signed by "
                          "Maker (valid), SHA-256 12ab"))
      << "the worst first";
}

TEST(Health, FindsImagesOutsideTheFoldersOfWindowsAndPrograms) {
  const auto paths = [](const std::vector<std::string>& images) {
    Records records;
    for (const std::string& image : images) records.push_back(Service(image, image));
    std::vector<std::string> found;
    for (const Finding& finding : Examine(records)) {
      if (finding.rule == "image-in-user-folder") found.push_back(finding.subject);
    }
    return found;
  };
  EXPECT_THAT(paths({R"(C:\Users\me\a.sys)", R"(c:\WINDOWS\temp\a.sys)", R"(D:\Program Files\x\a.sys)", R"(C:\x\a.sys)",
                     R"(C:\Program Files (x86)\a.sys)", R"(C:\Program Files\..\Users\a.sys)",
                     R"(C:\ProgramData\Microsoft\Windows Defender\Updates\a.sys)", R"(C:\ProgramData\a.sys)",
                     R"(\FileSystem\Raw)"}),
              ElementsAre(R"(C:\Users\me\a.sys)", R"(C:\x\a.sys)", R"(C:\Program Files\..\Users\a.sys)",
                          R"(C:\ProgramData\a.sys)"));
  EXPECT_THAT(paths({R"(E:\WinNT\System32\drivers\a.sys)", R"(E:\WINNT\system32\b.sys)", R"(E:\winnt\c.sys)",
                     R"(C:\Users\System32\d.sys)", R"(C:\Windows\e.sys)"}),
              ElementsAre(R"(C:\Users\System32\d.sys)", R"(C:\Windows\e.sys)"))
      << "Windows is where most images are";
  Record missing = Service("gone", R"(C:\Users\gone.sys)");
  missing.image_missing = true;
  EXPECT_THAT(Found({missing}), ElementsAre(testing::StartsWith("image-missing | gone")));
}

TEST(Health, FindsDevicesWithAProblem) {
  Record device = Device("net.sys");
  device.problem_code = 43;
  Record unnamed = Device("disk.sys");
  unnamed.problem_code = 5000;
  unnamed.provider.clear();
  EXPECT_THAT(Found({device, Device("good.sys"), unnamed}),
              ElementsAre("device-problem | net.sys | problem 43 (CM_PROB_FAILED_POST_START): thing by maker",
                          "device-problem | disk.sys | problem 5000: thing",
                          "no-version-or-company | disk.sys | no company: oem1.inf"));
}

TEST(Health, ReportsRuleByRule) {
  Record stopped = Service("stopped", "C:\\Windows\\stopped.sys");
  stopped.state = "Stopped";
  std::vector<std::string> rules;
  for (const Finding& finding : Examine({Package("oem1.inf", "1.0", {}, 0), stopped, DeviceWithoutDriver("a")})) {
    rules.push_back(finding.rule);
  }
  EXPECT_THAT(rules, ElementsAre("device-without-driver", "not-running", "unused-package"));
}

}  // namespace
