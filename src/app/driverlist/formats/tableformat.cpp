#include "formats/formats.h"
#include "formats/rows.h"

namespace driverlist {

std::string FormatTable(const Table& table, const Page& page) {
  std::vector<RowColumn> columns;
  for (const inventory::Column& column : table.columns) {
    columns.push_back({std::string(column.name), column.floor, column.keepsEnd, column.leavesAs});
  }
  TextRows rows;
  rows.reserve(table.rows.size() + 1);
  for (const auto& row : table.rows) {
    std::vector<TextCell>& cells = rows.emplace_back();
    for (std::size_t i = 0; i < row.size(); ++i) {
      cells.push_back({inventory::TextOf(row[i].value), row[i].tone, table.columns[i].isWhole});
    }
  }
  return FormatRows(columns, std::move(rows), page);
}

}  // namespace driverlist
