/// @file
/// Shows the differences between two inventories to people, in UTF-8.
#pragma once

#include <string>

#include "inventory/comparison.h"
#include "terminal/page.h"

namespace driverlist {

/// A line for each inventory, a row for each member that differs, and a line of counts. Rows of a group are indented
/// below those of its first record. On a page that is too narrow for both values, each record is a paragraph.
std::string FormatDiffTable(const inventory::Comparison& comparison, const Page& page);

}  // namespace driverlist
