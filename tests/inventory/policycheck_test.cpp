#include "inventory/policycheck.h"

#include <gmock/gmock.h>

#include <sstream>

#include "inventories.h"
#include "inventory/documents.h"
#include "inventory/input.h"

using namespace inventory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Policy PolicyOf(const std::string& rules) {
  std::stringbuf buffer("{\"name\": \"p\", \"rules\": [" + rules + "]}", std::ios_base::in);
  return ReadPolicy(buffer);
}

/// Two services, a device with a driver and one without, a package of Windows and an OEM package.
Inventory Machine() {
  Inventory inventory;
  inventory.head = {"0.1.0", "host", "8f0c", "10.0.1", "2024-05-06T00:00:00Z"};
  Record net = test::ServiceRecord("Net", "9.5", "C:\\net.sys");
  net.provider = "Maker";
  net.start_type = "Manual";
  net.image_time = "2023-05-06T00:00:00Z";
  Record gone = test::ServiceRecord("gone", "", "C:\\gone.sys");
  gone.start_type = "Automatic";
  gone.image_missing = true;
  Record package = test::PackageRecord("oem1.inf", "10.0", "net.inf", {"net.sys", "evil.sys"});
  package.inf_date = "2014-01-02";
  Record inbox = test::PackageRecord("usb.inf", "10.0", "usb.inf", {"usb.sys"});
  inbox.inf_date = "2006-06-21";
  inventory.records = {
      net, gone, test::DeviceRecord("PCI\\1", "10.0", "oem1.inf"), test::DeviceRecord("PCI\\2", ""), package, inbox};
  return inventory;
}

Inventory VerifiedMachine() {
  Inventory inventory = Machine();
  inventory.isVerified = true;
  inventory.records[0].signature = "valid";
  inventory.records[0].sha256 = "12ab";
  return inventory;
}

/// The result of a rule, and a line for each violation.
std::vector<std::string> Result(const std::string& members, const Inventory& inventory = Machine()) {
  const PolicyCheck check = Check(PolicyOf("{\"name\": \"r\", " + members + "}"), inventory);
  EXPECT_EQ(check.results.size(), 1u);
  const RuleResult& result = check.results.front();
  EXPECT_EQ(result.violationCount, result.violations.size());
  std::vector<std::string> lines = {std::string(RuleStateName(result.state)) + " of " +
                                    std::to_string(result.examined)};
  for (const Violation& violation : result.violations) {
    lines.push_back((violation.kind.empty() ? "" : violation.kind + " ") + violation.subject + ": " +
                    violation.evidence);
  }
  return lines;
}

TEST(PolicyCheck, FindsForbiddenDrivers) {
  EXPECT_THAT(Result(R"("forbid": ["provider=maker"])"), ElementsAre("failed of 6", "service Net: provider is Maker"));
  EXPECT_THAT(Result(R"("where": ["kind=service"], "forbid": [["version<9"], ["image_missing=true", "name=gone*"]])"),
              ElementsAre("failed of 2", "service gone: image_missing is true, name is gone.sys"));
  EXPECT_THAT(Result(R"("forbid": ["provider=other"])"), ElementsAre("passed of 6"));
  EXPECT_THAT(Result(R"("forbid": ["kind=service", "version=9*"])"),
              ElementsAre("failed of 6", "service Net: version is 9.5"));
  EXPECT_THAT(Result(R"("where": "name=gone.sys", "forbid": "kind=service")"),
              ElementsAre("failed of 1", "service gone: kind is service"));
  EXPECT_THAT(Result(R"("forbidden_drivers": ["EVIL.sys", "x.sys"])"),
              ElementsAre("failed of 6", "package oem1.inf: files is net.sys;evil.sys"));
  EXPECT_THAT(Result(R"("forbidden_drivers": "g*.sys")"), ElementsAre("failed of 6", "service gone: name is gone.sys"));
}

TEST(PolicyCheck, FindsRequiredDriversThatAreNotThere) {
  EXPECT_THAT(Result(R"("required_drivers": ["net.sys", "edr.sys"])"),
              ElementsAre("failed of 0", "kind=service, name=edr.sys: there is no such driver"));
  EXPECT_THAT(Result(R"("required_drivers": "NET.sys")"), ElementsAre("passed of 0"));
  EXPECT_THAT(Result(R"("where": "kind=service", "require": [["name=a"], ["name=b", "state=running"]])"),
              ElementsAre("failed of 0", "kind=service, name=a or name=b, state=running: there is no such driver"));
}

TEST(PolicyCheck, FindsDriversThatAreTooOldByVersion) {
  EXPECT_THAT(Result(R"("driver": "net.sys", "minimum_version": "9.10")"),
              ElementsAre("failed of 1", "service Net: version is 9.5, where version>=9.10 is expected"))
      << "versions, not texts";
  EXPECT_THAT(Result(R"("driver": "net.sys", "minimum_version": "9.5")"), ElementsAre("passed of 1"));
  EXPECT_THAT(Result(R"("driver": "gone.sys", "minimum_version": "1")"),
              ElementsAre("failed of 1", "service gone: version is unknown, where version>=1 is expected"));
  EXPECT_THAT(Result(R"("where": "inf=oem1.inf", "expect": ["version>=11", "provider=x"])"),
              ElementsAre("failed of 2",
                          "device PCI\\1_name: version is 10.0, provider is unknown, where version>=11, provider=x is "
                          "expected",
                          "package oem1.inf: version is 10.0, provider is unknown, where version>=11, provider=x is "
                          "expected"));
}

TEST(PolicyCheck, FindsDriversThatAreTooOldByDate) {
  EXPECT_THAT(Result(R"("maximum_age": "10y")"),
              ElementsAre("failed of 2", "package oem1.inf: inf_date is 2014-01-02, where inf_date<=10y is expected"))
      << "dates of packages that came with Windows say nothing";
  EXPECT_THAT(
      Result(R"("maximum_age": "300d")"),
      ElementsAre("failed of 2", "service Net: image_time is 2023-05-06T00:00:00Z, where image_time<=300d is expected",
                  "package oem1.inf: inf_date is 2014-01-02, where inf_date<=300d is expected"));
  EXPECT_THAT(Result(R"("maximum_age": "20y")"), ElementsAre("passed of 2"));
}

TEST(PolicyCheck, FindsOtherStartTypes) {
  EXPECT_THAT(Result(R"("start_type": "Manual")"),
              ElementsAre("failed of 2", "service gone: start_type is Automatic, where start_type=Manual is expected"));
  EXPECT_THAT(Result(R"("driver": "net*", "start_type": ["Boot Start", "Disabled"])"),
              ElementsAre("failed of 1",
                          "service Net: start_type is Manual, where start_type=Boot Start or start_type=Disabled is "
                          "expected"));
}

TEST(PolicyCheck, FindsImagesThatAreNotSigned) {
  EXPECT_THAT(Result(R"("signed": true)", VerifiedMachine()), ElementsAre("passed of 1"));
  Inventory unsignedImage = VerifiedMachine();
  unsignedImage.records[0].signature = "unsigned";
  EXPECT_THAT(Result(R"("signed": true)", unsignedImage),
              ElementsAre("failed of 1", "service Net: signature is unsigned, where signature=valid is expected"));
}

TEST(PolicyCheck, TakesAnImageThatCouldNotBeReadForOneThatBreaksTheRule) {
  Inventory unread = VerifiedMachine();
  unread.records[0].signature = "unknown";
  unread.records[0].sha256.clear();
  const std::string unknown = " is not known, since the image could not be read";
  EXPECT_THAT(Result(R"("where": "kind=service", "forbid": "sha256=34cd")", unread),
              ElementsAre("failed of 2", "service Net: sha256" + unknown));
  EXPECT_THAT(Result(R"("signed": true)", unread),
              ElementsAre("failed of 1", "service Net: signature" + unknown + ", where signature=valid is expected"));
  EXPECT_THAT(Result(R"("where": ["kind=service", "signer=Maker"], "expect": "provider=Other")", unread),
              ElementsAre("failed of 1", "service Net: provider is Maker, where provider=Other is expected"))
      << "it may be one that the rule is about";
  EXPECT_THAT(Result(R"("require": "signature=unknown")", unread),
              ElementsAre("failed of 0", "signature=unknown: there is no such driver"));
  EXPECT_THAT(Result(R"("where": "kind=service", "forbid": "sha256=34cd")", VerifiedMachine()),
              ElementsAre("passed of 2"));
}

TEST(PolicyCheck, SaysWhichRulesAreAboutNoDriver) {
  EXPECT_THAT(Result(R"("driver": "misspelt.sys", "minimum_version": "1")"), ElementsAre("skipped of 0"));
}

std::string Missing(const std::string& members, const Inventory& inventory) {
  try {
    RequireKnowledge(PolicyOf("{\"name\": \"r\", " + members + "}"), inventory);
  } catch (const InputProblem& problem) {
    return problem.what();
  }
  return "";
}

TEST(PolicyCheck, IsRefusedWhereNobodyLookedAtImages) {
  const std::string unverified = "contains no verified images, which rule \"r\" needs: make it with --verify";
  EXPECT_EQ(Missing(R"("signed": true)", Machine()), unverified);
  EXPECT_EQ(Missing(R"("where": "signer=x", "forbid": "name=a")", Machine()), unverified);
  EXPECT_EQ(Missing(R"("forbid": [["name=a"], ["sha256=12"]])", Machine()), unverified);
  EXPECT_EQ(Missing(R"("forbid": "name=a")", Machine()), "");
  EXPECT_EQ(Missing(R"("signed": true)", VerifiedMachine()), "");
  const std::string knownRule = R"("forbid": "known=*")";
  EXPECT_EQ(Missing(knownRule, VerifiedMachine()),
            "was not looked up in a list of known drivers, which rule \"r\" needs");
  Inventory lookedUp = VerifiedMachine();
  lookedUp.isLookedUp = true;
  EXPECT_EQ(Missing(knownRule, lookedUp), "");
  EXPECT_EQ(Missing(knownRule, test::ReadSnapshotText(SnapshotText(lookedUp))), "");
  EXPECT_NE(Missing(knownRule, test::ReadSnapshotText(SnapshotText(VerifiedMachine()))), "");
}

TEST(PolicyCheck, KeepsNoMoreViolationsThanItsLimit) {
  Inventory inventory;
  inventory.records.resize(MostViolations + 1);
  const PolicyCheck check = Check(PolicyOf(R"({"name": "r", "forbid": "kind=service"})"), inventory);
  EXPECT_EQ(check.results.front().violationCount, MostViolations + 1);
  EXPECT_EQ(check.results.front().violations.size(), MostViolations);
}

TEST(PolicyCheckDocument, HasTheCountsAndEveryRuleOfEveryMachine) {
  const Policy policy = PolicyOf(
      R"({"name": "a", "severity": "high", "message": "m", "driver": "net.sys", "minimum_version": "10"},
         {"name": "b", "require": "name=x"}, {"name": "c", "driver": "none.sys", "start_type": "Manual"})");
  EXPECT_EQ(PolicyCheckJson(policy, {Check(policy, Machine())}, Machine().head), R"({
  "schema_version": 2,
  "tool_version": "0.1.0",
  "host": "host",
  "host_id": "8f0c",
  "windows": "10.0.1",
  "time": "2024-05-06T00:00:00Z",
  "policy": {
    "name": "p"
  },
  "summary": {
    "passed": 0,
    "failed": 2,
    "skipped": 1
  },
  "machines": [
    {
      "tool_version": "0.1.0",
      "host": "host",
      "host_id": "8f0c",
      "windows": "10.0.1",
      "time": "2024-05-06T00:00:00Z",
      "summary": {
        "passed": 0,
        "failed": 2,
        "skipped": 1
      },
      "rules": [
        {
          "rule": "a",
          "severity": "high",
          "message": "m",
          "result": "failed",
          "examined": 1,
          "violation_count": 1,
          "violations": [
            {
              "subject": "Net",
              "kind": "service",
              "evidence": "version is 9.5, where version>=10 is expected"
            }
          ]
        },
        {
          "rule": "b",
          "severity": "medium",
          "result": "failed",
          "examined": 0,
          "violation_count": 1,
          "violations": [
            {
              "subject": "name=x",
              "evidence": "there is no such driver"
            }
          ]
        },
        {
          "rule": "c",
          "severity": "medium",
          "result": "skipped",
          "examined": 0,
          "violation_count": 0,
          "violations": []
        }
      ]
    }
  ]
}
)");
}

}  // namespace
