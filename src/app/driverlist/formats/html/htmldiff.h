/// @file
/// A comparison as a page to read, print and pass on.
#pragma once

#include <string>

#include "inventory/comparison.h"
#include "inventory/head.h"

namespace driverlist {

/// A single HTML file like that of FormatHtml(), with a row for each member that differs. A row opens to all members of
/// its record in both inventories. `head` is the head of the run that compares.
std::string FormatDiffHtml(const inventory::Comparison& comparison, const inventory::Head& head);

}  // namespace driverlist
