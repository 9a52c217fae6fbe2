/// @file
/// A list of drivers in the form that all formats and filters use: columns and rows of values.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "formats/tone.h"
#include "inventory/listing.h"
#include "inventory/members.h"
#include "inventory/record.h"

namespace driverlist {

struct Cell {
  inventory::Value value;
  Tone tone = Tone::Plain;
};

/// Each row has a cell for each column.
struct Table {
  std::vector<inventory::Column> columns;
  std::vector<std::vector<Cell>> rows;
};

/// All members of all records, in their order.
Table TableOf(const inventory::Records& records);

/// All fields of all drivers, in their order.
Table TableOf(const std::vector<inventory::ListedDriver>& drivers);

/// The index of the column called `name`; the number of columns if there is no such column.
std::size_t IndexOf(const std::vector<inventory::Column>& columns, std::string_view name);

/// The given `rows` (by index) and `columns` of `table`, in the given order. No row and no column may be given twice.
Table PartOf(Table table, const std::vector<std::size_t>& rows, const std::vector<inventory::Column>& columns);

}  // namespace driverlist
