/// @file
/// The drivers that a list shows, and their order.
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
  /// At least one column must contain it, or match it if it has wildcards: inventory::Pattern::Search().
  std::optional<std::string> match;
  /// Made with the columns of the table.
  inventory::Conditions conditions;
  /// The first counts most. If empty, the order of the table stays.
  std::vector<SortColumn> sort;
  /// The largest number of rows to show.
  std::optional<std::size_t> first;
};

/// The indexes of the rows that `selection` chooses, in the order of the table. Ages count from `now`.
std::vector<std::size_t> ChosenRows(const Table& table, const Selection& selection, std::string_view now);

/// Sorts `rows` as `selection` says and keeps as many of the first rows as it says. Equal rows keep their order. Values
/// have the order of inventory::OrderKeyOf(), or the reverse order if it is descending.
void SortAndCut(const Table& table, const Selection& selection, std::vector<std::size_t>& rows);

/// Groups the `rows` of `table` by their values in `columns`. The result has these columns and "count", with the
/// largest groups first, and groups of the same size in the order of their values.
Table Grouped(const Table& table, const std::vector<std::size_t>& rows, const std::vector<inventory::Column>& columns);

/// The columns of such a table.
std::vector<inventory::Column> GroupColumns(const std::vector<inventory::Column>& columns);

}  // namespace driverlist
