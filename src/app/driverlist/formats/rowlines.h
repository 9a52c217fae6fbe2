/// @file
/// Rows of text, each as a paragraph.
#pragma once

#include <string>
#include <vector>

#include "formats/rows.h"

namespace driverlist {

/// A paragraph for each row: a line for each cell that is not empty, with the title of its column in front of it, or
/// above it if the page is too narrow. Long texts continue in further lines. A row of empty cells shows its first
/// title. `page` has a width.
std::string RowLines(const std::vector<RowColumn>& columns, const TextRows& rows, const Page& page);

}  // namespace driverlist
