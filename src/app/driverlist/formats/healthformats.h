/// @file
/// How the program shows people what deserves a look, in UTF-8.
#pragma once

#include <string>
#include <vector>

#include "inventory/healthrules.h"
#include "inventory/inventory.h"
#include "terminal/page.h"

namespace driverlist {

/// In which lists of known drivers images were looked up, and how old these were on the day of `time` (UTC, ISO 8601);
/// without lists, where to get one.
std::string ListsText(const std::vector<trust::KnownList>& lists, const std::string& time);

/// For each rule that found something, a line that says what it looks for and a row per finding below. One line when
/// nothing was found. Behind it ListsText() for an inventory that was verified.
std::string FormatHealthTable(const std::vector<inventory::Finding>& findings, const inventory::Inventory& inventory,
                              const Page& page);

}  // namespace driverlist
