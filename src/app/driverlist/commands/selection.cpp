#include "commands/selection.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "inventory/patterns.h"
#include "inventory/valueorder.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::OrderKey;
using Row = std::vector<Cell>;

constexpr Column CountColumn = [] {
  Column column{};
  column.name = "count";
  column.label = "Count";
  column.type = inventory::ValueType::Number;
  column.width = 7;
  column.floor = 5;
  column.isWhole = true;
  return column;
}();

bool HasMatch(const Row& row, const inventory::Pattern& pattern) {
  return std::any_of(row.begin(), row.end(), [&pattern](const Cell& cell) { return pattern.Matches(cell.value); });
}

/// What a row is ordered by.
struct RowKey {
  std::vector<OrderKey> keys;
  std::size_t row = 0;
};

std::vector<RowKey> KeysOf(const Table& table, const std::vector<SortColumn>& sort,
                           const std::vector<std::size_t>& rows) {
  std::vector<RowKey> keys;
  keys.reserve(rows.size());
  for (const std::size_t row : rows) {
    RowKey& key = keys.emplace_back();
    key.row = row;
    for (const SortColumn& by : sort) {
      const std::size_t place = IndexOf(table.columns, by.column.name);
      key.keys.push_back(inventory::OrderKeyOf(table.rows[row][place].value, by.column.type));
    }
  }
  return keys;
}

void Sort(const Table& table, const std::vector<SortColumn>& sort, std::vector<std::size_t>& rows) {
  std::vector<RowKey> keys = KeysOf(table, sort, rows);
  std::stable_sort(keys.begin(), keys.end(), [&sort](const RowKey& a, const RowKey& b) {
    for (std::size_t i = 0; i < sort.size(); ++i) {
      const bool isAscending = !sort[i].isDescending;
      if (a.keys[i] < b.keys[i]) return isAscending;
      if (b.keys[i] < a.keys[i]) return !isAscending;
    }
    return false;
  });
  std::transform(keys.begin(), keys.end(), rows.begin(), [](const RowKey& key) { return key.row; });
}

/// A row for each group, with the values of its first row and the number of its rows.
std::vector<Row> CountedRows(const Table& table, const std::vector<std::size_t>& rows,
                             const std::vector<std::size_t>& places) {
  std::map<std::vector<std::string>, std::pair<Row, std::uint64_t>> groups;
  for (const std::size_t row : rows) {
    std::vector<std::string> key;
    for (const std::size_t place : places) key.push_back(inventory::TextOf(table.rows[row][place].value));
    auto& [cells, count] = groups[std::move(key)];
    if (++count > 1) continue;
    // What is good or bad about one row says nothing of its group.
    for (const std::size_t place : places) cells.push_back({table.rows[row][place].value});
  }
  std::vector<Row> counted;
  for (auto& [key, group] : groups) {
    group.first.emplace_back().value = group.second;
    counted.push_back(std::move(group.first));
  }
  return counted;
}

std::vector<std::size_t> AllRows(const Table& table) {
  std::vector<std::size_t> rows(table.rows.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  return rows;
}

}  // namespace

std::vector<std::size_t> ChosenRows(const Table& table, const Selection& selection, std::string_view now) {
  std::optional<inventory::Pattern> match;
  if (selection.match) match = inventory::Pattern::Search(*selection.match);
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < table.rows.size(); ++i) {
    const Row& row = table.rows[i];
    const auto valueOf = [&row](std::size_t column) { return row[column].value; };
    if (match && !HasMatch(row, *match)) continue;
    if (inventory::Hold(selection.conditions, valueOf, now)) rows.push_back(i);
  }
  return rows;
}

void SortAndCut(const Table& table, const Selection& selection, std::vector<std::size_t>& rows) {
  if (!selection.sort.empty()) Sort(table, selection.sort, rows);
  if (selection.first && *selection.first < rows.size()) rows.resize(*selection.first);
}

std::vector<Column> GroupColumns(const std::vector<Column>& columns) {
  std::vector<Column> all = columns;
  all.push_back(CountColumn);
  return all;
}

Table Grouped(const Table& table, const std::vector<std::size_t>& rows, const std::vector<Column>& columns) {
  std::vector<std::size_t> places;
  std::vector<SortColumn> order = {{CountColumn, true}};
  for (const Column& column : columns) {
    places.push_back(IndexOf(table.columns, column.name));
    order.push_back({column, false});
  }
  Table groups{GroupColumns(columns), CountedRows(table, rows, places)};
  std::vector<std::size_t> sorted = AllRows(groups);
  Sort(groups, order, sorted);
  const std::vector<Column> all = groups.columns;
  return PartOf(std::move(groups), sorted, all);
}

}  // namespace driverlist
