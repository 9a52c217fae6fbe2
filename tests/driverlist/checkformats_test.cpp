#include "formats/checkformats.h"

#include <gmock/gmock.h>

#include "formats/formats.h"

using namespace driverlist;
using inventory::Policy;
using inventory::PolicyCheck;
using inventory::RuleResult;
using inventory::RuleState;
using inventory::Severity;

namespace {

/// A rule that is broken twice, one that is kept, one that is about no driver, and a critical one.
const Policy FourRules = {"Ger\u00E4te & <co>",
                          "",
                          {{"signed", Severity::High, "Sign \"it\" & <go>", {}},
                           {"kept", Severity::Medium, "", {}},
                           {"skipped", Severity::Low, "", {}},
                           {"edr", Severity::Critical, "", {}}}};

PolicyCheck Check(const std::string& host) {
  PolicyCheck check;
  check.head.host = host;
  check.head.windows = "10.0.22621";
  check.head.time = "2024-05-06T07:08:09Z";
  check.results = {{RuleState::Broken,
                    5,
                    3,
                    {{"net", "signature is unsigned, where signature=valid is expected", "service"},
                     {"a\u202E\x01", "signature is <invalid> & so on", "service"}}},
                   {RuleState::Kept, 1, 0, {}},
                   {RuleState::NotApplicable, 0, 0, {}},
                   {RuleState::Broken, 0, 1, {{"name=edr.sys", "there is no such driver", ""}}}};
  return check;
}

TEST(PolicyCheckTable, ShowsBrokenRulesWithTheirDriversAndCountsTheOthers) {
  EXPECT_EQ(FormatPolicyCheck(FourRules, {Check("pc")}, {0, false}),
            "signed (Sign \"it\" & <go>), high: 3 of 5\n"
            "what               evidence\n"
            "net                signature is unsigned, where signature=valid is expected\n"
            "a[U+202E][U+0001]  signature is <invalid> & so on\n"
            "and 1 more\n"
            "\n"
            "!!! edr, critical: 1\n"
            "what          evidence\n"
            "name=edr.sys  there is no such driver\n"
            "\n"
            "passed: kept\n"
            "skipped, since no driver is concerned: skipped\n"
            "2 of 4 rules failed\n");
}

TEST(PolicyCheckTable, FitsATerminal) {
  EXPECT_THAT(FormatPolicyCheck(FourRules, {Check("pc")}, {59, false}),
              testing::StartsWith("signed (Sign \"it\" & <go>), high: 3 of 5\n"
                                  "what               evidence\n"
                                  "net                signature is unsigned, where\n"
                                  "                   signature=valid is expected\n"
                                  "a[U+202E][U+0001]  signature is <invalid> & so on\n"));
  EXPECT_THAT(FormatPolicyCheck(FourRules, {Check("pc"), Check("server")}, {29, false}),
              testing::StartsWith("=== pc, Windows 10.0.22621,\n"
                                  "2024-05-06T07:08:09Z\n"
                                  "signed (Sign \"it\" & <go>),\n"
                                  "high: 3 of 5\n"
                                  "net\n"
                                  "  signature is unsigned,\n"
                                  "  where signature=valid is\n"
                                  "  expected\n"
                                  "a[U+202E][U+0001]\n"
                                  "  signature is <invalid> & so\n"
                                  "  on\n"
                                  "and 1 more\n"
                                  "\n"
                                  "!!! edr, critical: 1\n"
                                  "name=edr.sys\n"
                                  "  there is no such driver\n"
                                  "\n"
                                  "passed: kept\n"
                                  "skipped, since no driver is\n"
                                  "concerned: skipped\n"));
}

TEST(PolicyCheckTable, SaysThatAllIsWell) {
  const Policy policy = {"", "", {{"a", Severity::High, "", {}}}};
  PolicyCheck check;
  check.results = {{RuleState::Kept, 1, 0, {}}};
  EXPECT_EQ(FormatPolicyCheck(policy, {check}, {0, false}), "passed: a\nno rule of 1 rule failed\n");
}

TEST(PolicyCheckTable, NamesTheMachinesWhereThereAreSeveral) {
  const std::string text = FormatPolicyCheck(FourRules, {Check("pc"), Check("server")}, {0, false});
  EXPECT_THAT(text, testing::StartsWith("=== pc, Windows 10.0.22621, 2024-05-06T07:08:09Z\nsigned "));
  EXPECT_THAT(text,
              testing::HasSubstr("4 rules failed\n\n=== server, Windows 10.0.22621, 2024-05-06T07:08:09Z\nsigned "));
}

TEST(PolicyCheckCsv, HasARowForEachRuleAndViolation) {
  EXPECT_EQ(
      FormatCsv(PolicyCheckTable(FourRules, {Check("pc")}), {}),
      "host,rule,severity,result,message,kind,subject,evidence\r\n"
      "pc,signed,high,failed,\"Sign \"\"it\"\" & <go>\",service,net,\"signature is unsigned, where signature=valid "
      "is expected\"\r\n"
      "pc,signed,high,failed,\"Sign \"\"it\"\" & <go>\",service,a\u202E\x01,signature is <invalid> & so on\r\n"
      "pc,kept,medium,passed,,,,\r\n"
      "pc,skipped,low,skipped,,,,\r\n"
      "pc,edr,critical,failed,,,name=edr.sys,there is no such driver\r\n");
}

TEST(JUnit, HasASuiteForEachMachineAndACaseForEachRule) {
  EXPECT_EQ(FormatJUnit(FourRules, {Check("pc")}), R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuites name="Geräte &amp; &lt;co>" tests="4" failures="2" errors="0" skipped="1">
  <testsuite name="Geräte &amp; &lt;co> on pc" tests="4" failures="2" errors="0" skipped="1" time="0" timestamp="2024-05-06T07:08:09" hostname="pc">
    <testcase classname="Geräte &amp; &lt;co>" name="signed" time="0">
      <failure message="Sign &quot;it&quot; &amp; &lt;go>" type="high">net: signature is unsigned, where signature=valid is expected
a[U+202E][U+0001]: signature is &lt;invalid&gt; &amp; so on
and 1 more
</failure>
    </testcase>
    <testcase classname="Geräte &amp; &lt;co>" name="kept" time="0" />
    <testcase classname="Geräte &amp; &lt;co>" name="skipped" time="0">
      <skipped message="no driver is concerned" />
    </testcase>
    <testcase classname="Geräte &amp; &lt;co>" name="edr" time="0">
      <failure message="edr" type="critical">name=edr.sys: there is no such driver
</failure>
    </testcase>
  </testsuite>
</testsuites>
)");
}

TEST(JUnit, AddsUpTheMachines) {
  EXPECT_THAT(FormatJUnit(FourRules, {Check("pc"), Check("server")}),
              testing::HasSubstr("tests=\"8\" failures=\"4\" errors=\"0\" skipped=\"2\">\n  <testsuite name="));
}

}  // namespace
