/// @file
/// The forms in which the program shows what differs between two inventories. All are UTF-8 and the same in every
/// locale.
#pragma once

#include <string>

#include "inventory/comparison.h"
#include "inventory/head.h"
#include "terminal/page.h"

namespace driverlist {

/// A line for each inventory, a row for each member that differs, and a line of counts. Rows of a group are indented
/// below those of its first record.
std::string FormatDiffTable(const inventory::Comparison& comparison, const Page& page);

/// One object: `head`, which is that of the run that compares, "old" and "new", the heads of both inventories,
/// "summary", an object that has the number of groups of each difference and the number of records that are the "same",
/// and "differences", an array of objects that have "difference", "group", "kind", "key", "name" and "changes", an
/// array of objects that have "member", "old" and "new", each as far as there is a value.
std::string FormatDiffJson(const inventory::Comparison& comparison, const inventory::Head& head);

}  // namespace driverlist
