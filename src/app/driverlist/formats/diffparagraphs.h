/// @file
/// What differs between two inventories, on a page that is too narrow for a table of it.
#pragma once

#include <string>

#include "inventory/comparison.h"
#include "terminal/page.h"

namespace driverlist {

/// For each difference, a line that says what happened to which record, and below it each member that differs, with the
/// old and the new value in one line, or in two if they are long. Nothing is cut. Records of a group are indented below
/// its first. `page` has a width.
std::string DifferencesAsParagraphs(const inventory::Comparison& comparison, const Page& page);

}  // namespace driverlist
