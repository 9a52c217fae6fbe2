/// @file
/// Which drivers a list shows, and in which order.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/table.h"
#include "inventory/conditions.h"

namespace driverlist {

struct SortColumn {
  inventory::Column column;
  bool isDescending = false;
};

/// Texts are UTF-8.
struct Selection {
  /// One column at least must hold it, or be like it where it has wildcards: inventory::Pattern::Search().
  std::optional<std::string> match;
  /// Made with the columns of the table.
  inventory::Conditions conditions;
  /// The first counts most. Without one, the order of the table stays.
  std::vector<SortColumn> sort;
  /// How many rows to show at most.
  std::optional<std::size_t> first;
};

/// The indexes of the rows that `selection` chooses, in the order of the table. Ages count from `now`.
std::vector<std::size_t> ChosenRows(const Table& table, const Selection& selection, std::string_view now);

/// Orders `rows` as `selection` says, and keeps the first of them as it says. Equal rows keep their order. Values have
/// the order of inventory::OrderKeyOf(), and the reverse where it is descending.
void SortAndCut(const Table& table, const Selection& selection, std::vector<std::size_t>& rows);

/// The groups that `rows` of `table` make by what they have of `columns`: these columns and "count", the largest groups
/// first, those of one size in the order of their values.
Table Grouped(const Table& table, const std::vector<std::size_t>& rows, const std::vector<inventory::Column>& columns);

/// The columns of such a table.
std::vector<inventory::Column> GroupColumns(const std::vector<inventory::Column>& columns);

}  // namespace driverlist
