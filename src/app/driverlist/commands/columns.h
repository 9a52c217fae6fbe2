/// @file
/// Which columns a list can show.
#pragma once

#include <vector>

#include "commands/options.h"

namespace driverlist {

/// All columns of the library's listing when there is a `mode`, else those of the inventory.
std::vector<inventory::Column> ColumnsOf(const std::optional<inventory::ListingMode>& mode);

/// Those of `columns` that `format` shows when the user chooses none, of an inventory that is verified or not.
std::vector<inventory::Column> DefaultColumns(const std::vector<inventory::Column>& columns, Format format,
                                              bool isVerified);

/// Their names.
std::vector<std::string> ColumnNames(const std::vector<inventory::Column>& columns);

}  // namespace driverlist
