#include "formats/formats.h"
#include "formats/rows.h"

namespace driverlist {

std::string FormatTable(const Table& table, const Page& page) {
  std::vector<RowColumn> columns;
  for (const inventory::Column& column : table.columns) {
    columns.push_back({std::string(column.name), column.floor, column.keepsEnd});
  }
  std::vector<std::vector<TextCell>> rows;
  rows.reserve(table.rows.size() + 1);
  for (const auto& row : table.rows) {
    std::vector<TextCell>& cells = rows.emplace_back();
    for (const Cell& cell : row) cells.push_back({inventory::TextOf(cell.value), cell.tone});
  }
  return FormatRows(columns, std::move(rows), page);
}

}  // namespace driverlist
