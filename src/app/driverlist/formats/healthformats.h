/// @file
/// Shows the findings of health to people, in UTF-8.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "formats/table.h"
#include "inventory/documents.h"
#include "inventory/inventory.h"
#include "terminal/page.h"

namespace driverlist {

/// The lists of known drivers in which images were looked up, and how old they were at `time` (UTC, ISO 8601); without
/// lists, how to get one.
std::string ListsText(const std::vector<trust::KnownList>& lists, const std::string& time);

/// How many findings a baseline hides, and when it was made: "2 findings are hidden by the baseline of ...".
std::string HidingText(const inventory::Hiding& hiding);

/// For each rule that found something, a line that says what the rule looks for and how urgent that is, followed by a
/// row per finding, each with its next step below, in the layout of FormatEvidence(). One line if nothing was found.
/// HidingText() follows if there is a baseline, and ListsText() for a verified inventory.
std::string FormatHealthTable(const std::vector<inventory::Finding>& findings, const inventory::Inventory& inventory,
                              const Page& page, const std::optional<inventory::Hiding>& hiding = std::nullopt);

/// The findings with the members that they have in documents, for formats that take a table.
Table FindingsTable(const std::vector<inventory::Finding>& findings);

}  // namespace driverlist
