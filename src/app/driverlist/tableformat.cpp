#include "formats.h"
#include "table.h"

namespace driverlist {
namespace {

/// Names and paths tell drivers apart, paths by their ends; what says the rest in the first words may be cut sooner.
TableColumn Described(const Column& column) {
  const std::string title(column.name);
  if (title == "name") return {title, 26};
  if (title == "path") return {title, 24, true};
  if (title == "provider" || title == "description") return {title, 10};
  return {title, 15};
}

Colour ColourOf(const std::string& text, const Column& column) {
  if (column.name == "state") return text == "Running" ? Colour::Green : Colour::Yellow;
  return column.name == "file_version" && text == "N/A" ? Colour::Red : Colour::None;
}

}  // namespace

std::string FormatTable(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                        std::size_t width, bool colours) {
  std::vector<TableColumn> described;
  for (const Column& column : columns) described.push_back(Described(column));
  std::vector<std::vector<Cell>> rows;
  for (const Orvane::DriverData& driver : drivers) {
    std::vector<Cell>& row = rows.emplace_back();
    for (const Column& column : columns) {
      const std::string text = ColumnText(driver, column);
      row.push_back({text, ColourOf(text, column)});
    }
  }
  return FormatRows(described, rows, {width, colours});
}

}  // namespace driverlist
