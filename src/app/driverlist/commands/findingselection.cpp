#include "commands/findingselection.h"

#include <algorithm>

#include "commands/source.h"
#include "inventory/predicates.h"

namespace driverlist {
namespace {

using inventory::Finding;
using inventory::HealthRule;

bool Holds(const std::vector<std::string>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

bool IsChosen(const HealthRule& rule, const FindingSelection& selection) {
  const bool isNamed = selection.rules.empty() || Holds(selection.rules, rule.name);
  const bool isUrgent = !selection.severity || inventory::IsAtLeast(rule.severity, *selection.severity);
  return isNamed && isUrgent && !Holds(selection.otherRules, rule.name);
}

std::vector<Finding> ChosenFindings(const inventory::Inventory& inventory, const FindingSelection& selection) {
  for (const std::string& name : selection.rules) {
    if (!inventory::FindHealthRule(name)->needsVerification || inventory::IsVerified(inventory)) continue;
    throw UnusableInput("rule " + name + " needs verified images, and these are not verified.");
  }
  std::vector<Finding> findings = inventory::Examine(inventory.records);
  const auto isLeftOut = [&selection](const Finding& finding) {
    return !IsChosen(*inventory::FindHealthRule(finding.rule), selection);
  };
  findings.erase(std::remove_if(findings.begin(), findings.end(), isLeftOut), findings.end());
  return findings;
}

}  // namespace driverlist
