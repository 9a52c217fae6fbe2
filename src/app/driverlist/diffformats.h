/// @file
/// The forms in which the program shows what differs. All are UTF-8 and the same in every locale.
#pragma once

#include <string>

#include "comparison.h"
#include "inventory.h"
#include "table.h"

namespace driverlist {

/// Both inventories in a line each, a row per field that differs, and the counts. What the inventories hold as records is not
/// looked at.
std::string FormatDiffTable(const Inventory& before, const Inventory& after, const Comparison& comparison,
                            const Page& page);

/// See docs/driverlist.md.
std::string FormatDiffJson(const Inventory& before, const Inventory& after, const Comparison& comparison);

}  // namespace driverlist
