/// @file
/// The table of a page.
#pragma once

#include <string>

#include "formats/table.h"

namespace driverlist {

/// All columns and rows of `table`, in their order, and a sentence when there are no rows. The script sorts a column by
/// what its head says of the values, and a cell by its key where it has one; the style knows cells by the kind of their
/// values and by how they stand out, never by what they say.
std::string TableHtml(const Table& table);

}  // namespace driverlist
