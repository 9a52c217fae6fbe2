/// @file
/// A list of drivers as all formats and filters take it, whoever made it: columns, and what each row has of them.
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

/// Which of `columns` is called `name`; their number when there is none.
std::size_t IndexOf(const std::vector<inventory::Column>& columns, std::string_view name);

/// Of `table`, the `rows` with those indexes and `columns`, in their order. No row and no column is asked for twice.
Table PartOf(Table table, const std::vector<std::size_t>& rows, const std::vector<inventory::Column>& columns);

}  // namespace driverlist
