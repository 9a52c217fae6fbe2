/// @file
/// The columns that a list can show.
#pragma once

#include <vector>

#include "commands/options.h"

namespace driverlist {

/// All columns of the library's listing if there is a `mode`, otherwise those of the inventory.
std::vector<inventory::Column> ColumnsOf(const std::optional<inventory::ListingMode>& mode);

/// Those of `columns` that `format` shows by default; they depend on whether the inventory is verified.
std::vector<inventory::Column> DefaultColumns(const std::vector<inventory::Column>& columns, Format format,
                                              bool isVerified);

/// Their names.
std::vector<std::string> ColumnNames(const std::vector<inventory::Column>& columns);

}  // namespace driverlist
