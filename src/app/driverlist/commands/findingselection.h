/// @file
/// Which findings of an examination count.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "inventory/healthrules.h"
#include "inventory/inventory.h"

namespace driverlist {

struct FindingSelection {
  /// Names of the only rules that count; empty for all.
  std::vector<std::string> rules;
  /// Names of rules that do not.
  std::vector<std::string> otherRules;
  /// The least urgent severity that counts; nothing for all.
  std::optional<inventory::Severity> severity;
};

/// Whether findings of `rule` count.
bool IsChosen(const inventory::HealthRule& rule, const FindingSelection& selection);

/// What `selection` chooses of what there is to find in `inventory`. Throws UnusableInput if a rule was asked for by
/// name that needs verified images, and there are none: to find nothing would be no good news.
std::vector<inventory::Finding> ChosenFindings(const inventory::Inventory& inventory,
                                               const FindingSelection& selection);

}  // namespace driverlist
