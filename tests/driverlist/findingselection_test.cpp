#include "commands/findingselection.h"

#include <gmock/gmock.h>

#include "commands/options.h"

using namespace driverlist;
using testing::ElementsAre;

namespace {

std::vector<std::string> Chosen(const std::vector<std::string>& arguments) {
  std::vector<std::string> line = {"health"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  const ParsedCommandLine parsed = ParseCommandLine(line);
  if (!parsed.options) return {parsed.text};
  std::vector<std::string> names;
  for (const inventory::HealthRule& rule : inventory::HealthRules()) {
    if (IsChosen(rule, parsed.options->findings)) names.emplace_back(rule.name);
  }
  return names;
}

TEST(FindingSelection, TakesAllRulesWithoutAChoice) { EXPECT_EQ(Chosen({}).size(), inventory::HealthRules().size()); }

TEST(FindingSelection, TakesTheRulesThatAreNamed) {
  EXPECT_THAT(Chosen({"--rule", "unused-package", "--rule", "unsigned"}), ElementsAre("unsigned", "unused-package"));
  EXPECT_THAT(Chosen({"--severity", "high", "--not-rule", "unsigned", "--not-rule", "image-in-user-folder"}),
              ElementsAre("known-malicious", "known-vulnerable", "signature-invalid"));
  EXPECT_THAT(Chosen({"--severity", "critical"}), ElementsAre("known-malicious"));
  EXPECT_EQ(Chosen({"--severity", "low"}).size(), inventory::HealthRules().size());
}

TEST(FindingSelection, OffersTheNearestName) {
  EXPECT_THAT(Chosen({"--rule", "unsinged"}),
              ElementsAre("--rule: there is no rule \"unsinged\"; did you mean \"unsigned\"?"));
  EXPECT_THAT(Chosen({"--severity", "hi"}),
              ElementsAre("--severity: there is no severity \"hi\"; there are critical, high, medium, low."));
  EXPECT_THAT(Chosen({"--rule"}), ElementsAre("--rule takes one value each time it is given."));
}

TEST(FindingSelection, ThatLeavesNoRuleIsRefused) {
  const std::string sentence = "--rule, --not-rule and --severity leave no rule.";
  EXPECT_THAT(Chosen({"--rule", "unsigned", "--not-rule", "unsigned"}), ElementsAre(sentence));
  EXPECT_THAT(Chosen({"--rule", "unused-package", "--severity", "high"}), ElementsAre(sentence));
}

}  // namespace
