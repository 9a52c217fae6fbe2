#include "inventory/findingidentity.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <set>

#include "inventory/healthrules.h"

using namespace inventory;

namespace {

TEST(FindingIdentity, IsTheRuleAndADigestOfTheState) {
  // printf 'unused-package 8:oem3.inf 0: 5:maker' | sha256sum
  EXPECT_EQ(FindingIdentities().Next("unused-package", {"OEM3.inf", "", "Maker"}),
            "unused-package-b09776be2ea64ed9226d");
}

TEST(FindingIdentity, TellsStatesApartThatReadTheSame) {
  FindingIdentities identities;
  const std::set<std::string> all = {identities.Next("a", {"bc"}), identities.Next("a", {"b", "c"}),
                                     identities.Next("a", {"b 1:c"}), identities.Next("a", {}),
                                     identities.Next("a", {""})};
  EXPECT_EQ(all.size(), 5u);
}

TEST(FindingIdentity, IsNeverGivenTwiceInAnExamination) {
  FindingIdentities identities;
  const std::string first = identities.Next("a", {"b"});
  const std::string second = identities.Next("a", {"b"});
  EXPECT_NE(first, second);
  FindingIdentities later;
  EXPECT_EQ(later.Next("a", {"b"}), first);
  EXPECT_EQ(later.Next("a", {"b"}), second);
}

/// An image in a user's folder, that is unsigned.
Record Service() {
  Record service;
  service.kind = Kind::Service;
  service.name = "net.sys";
  service.service = "net";
  service.path = R"(C:\Users\me\net.sys)";
  service.version = "1.0";
  service.provider = "maker";
  service.state = "Running";
  service.start_type = "Automatic";
  service.size = 100;
  service.sha256 = "12ab";
  service.signature = "unsigned";
  return service;
}

Record Device() {
  Record device;
  device.kind = Kind::Device;
  device.name = "8086-0001_nodriver#";
  device.description = "thing";
  device.instance_id = R"(PCI\VEN_8086\1)";
  device.problem_code = 28;
  return device;
}

Record Package() {
  Record package;
  package.kind = Kind::Package;
  package.name = package.inf = "oem1.inf";
  package.original_inf = "scanner.inf";
  package.provider = "maker";
  package.version = "1.0";
  package.devices_using = 0;
  return package;
}

std::map<std::string, std::string> Ids(const Records& records) {
  std::map<std::string, std::string> ids;
  for (const Finding& finding : Examine(records)) ids[finding.rule] = finding.id;
  return ids;
}

/// The rules whose findings about `record` are others after `change`.
std::set<std::string> NewAfter(Record record, const std::function<void(Record&)>& change) {
  const auto before = Ids({record});
  change(record);
  std::set<std::string> rules;
  for (const auto& [rule, id] : Ids({record})) {
    const auto found = before.find(rule);
    if (found == before.end() || found->second != id) rules.insert(rule);
  }
  return rules;
}

using Rules = std::set<std::string>;

TEST(FindingIdentity, OfAnImageChangesWithIt) {
  EXPECT_EQ(NewAfter(Service(), [](Record& service) { service.sha256 = "34cd"; }), Rules({"unsigned"}));
  EXPECT_EQ(NewAfter(Service(), [](Record& service) { service.size = 101; }), Rules({"image-in-user-folder"}));
  EXPECT_EQ(NewAfter(Service(), [](Record& service) { service.version = "1.1"; }), Rules({"image-in-user-folder"}));
  EXPECT_EQ(NewAfter(Service(), [](Record& service) { service.path += ".bin"; }),
            Rules({"image-in-user-folder", "unsigned"}));
  EXPECT_EQ(NewAfter(Service(), [](Record& service) { service.service = "net2"; }),
            Rules({"image-in-user-folder", "unsigned"}));
}

TEST(FindingIdentity, OfAKnownImageChangesWithItsHash) {
  Record known = Service();
  known.known = {{"List", "1", "evil.sys", trust::Category::Malicious, trust::MatchKind::FileHash, {}}};
  EXPECT_EQ(NewAfter(known, [](Record& service) { service.sha256 = "34cd"; }), Rules({"known-malicious", "unsigned"}));
  EXPECT_EQ(NewAfter(known, [](Record& service) { service.known.front().entry = "2"; }), Rules())
      << "the list has a new edition";
  EXPECT_EQ(NewAfter(Service(), [&known](Record& service) { service.known = known.known; }),
            Rules({"known-malicious"}));
}

TEST(FindingIdentity, OfASignatureChangesWithTheCodeOfItsProblem) {
  Record broken = Service();
  broken.signature = "invalid";
  broken.signature_problem = "The digest is wrong. (0x80096010)";
  EXPECT_EQ(NewAfter(broken, [](Record& service) { service.signature_problem = "Falsch. (0x80096010)"; }), Rules());
  EXPECT_EQ(NewAfter(broken, [](Record& service) { service.signature_problem = "Revoked. (0x800B010C)"; }),
            Rules({"signature-invalid"}));
}

TEST(FindingIdentity, StaysWhileOnlyWordsTimesAndStatesChange) {
  EXPECT_EQ(NewAfter(Service(),
                     [](Record& service) {
                       service.service = "NET";
                       service.path = R"(c:\users\ME\net.sys)";
                       service.description = "other";
                       service.image_time = "2024-05-06T07:08:09Z";
                       service.signer = "someone";
                     }),
            Rules());
  Record stopped = Service();
  stopped.state = "Stopped";
  EXPECT_EQ(NewAfter(stopped, [](Record& service) { service.state = "Start Pending"; }), Rules());
  EXPECT_EQ(NewAfter(Service(), [](Record& service) { service.state = "Stopped"; }), Rules({"not-running"}));
}

TEST(FindingIdentity, OfAnImageInAUserFolderDoesNotDependOnVerification) {
  EXPECT_EQ(NewAfter(Service(),
                     [](Record& service) {
                       service.sha256.clear();
                       service.signature.clear();
                     }),
            Rules());
}

TEST(FindingIdentity, OfADeviceIsThatOfItsInstance) {
  const Rules both = {"device-problem", "device-without-driver"};
  EXPECT_EQ(NewAfter(Device(), [](Record& device) { device.instance_id += "2"; }), both);
  EXPECT_EQ(NewAfter(Device(), [](Record& device) { device.problem_code = 43; }), Rules({"device-problem"}));
  EXPECT_EQ(NewAfter(Device(), [](Record& device) { device.description = device.name = "x"; }), Rules());
}

TEST(FindingIdentity, OfAPackageTellsItFromALaterOneOfThatName) {
  for (const auto member : {&Record::inf, &Record::original_inf, &Record::provider, &Record::version}) {
    EXPECT_EQ(NewAfter(Package(), [member](Record& package) { package.*member = "oem9.inf"; }),
              Rules({"unused-package"}));
  }
  EXPECT_EQ(NewAfter(Package(), [](Record& package) { package.files = {"a.sys"}; }), Rules());
}

TEST(FindingIdentity, OfSeveralVersionsChangesWithEachCopy) {
  Record other = Service();
  other.path = R"(C:\Windows\net.sys)";
  other.version = "2.0";
  const auto id = [&other](const std::string& version) {
    Record service = Service();
    service.version = version;
    return Ids({service, other})["several-versions"];
  };
  EXPECT_EQ(id("1.0"), id("1.0"));
  EXPECT_NE(id("1.0"), id("1.1"));
}

TEST(FindingIdentity, DiffersBetweenEqualDevices) {
  const std::vector<Finding> findings = Examine({Device(), Device()});
  std::set<std::string> ids;
  for (const Finding& finding : findings) ids.insert(finding.id);
  EXPECT_EQ(ids.size(), findings.size());
}

}  // namespace
