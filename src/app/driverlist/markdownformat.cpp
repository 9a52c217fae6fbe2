#include "formats.h"
#include "unicode.h"

namespace driverlist {
namespace {

/// `text` so that it means itself in a cell.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : Printable(text)) {
    if (std::string("\\`*_[]<>|~&#").find(c) != std::string::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

template <typename TextOf>
std::string Row(const std::vector<Column>& columns, TextOf textOf) {
  std::string row = "|";
  for (const Column& column : columns) row += " " + textOf(column) + " |";
  return row + "\n";
}

}  // namespace

std::string FormatMarkdown(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns) {
  std::string table = Row(columns, [](const Column& column) { return Escaped(std::string(column.name)); });
  table += Row(columns, [](const Column&) { return std::string("---"); });
  for (const Orvane::DriverData& driver : drivers) {
    table += Row(columns, [&driver](const Column& column) { return Escaped(ColumnText(driver, column)); });
  }
  return table;
}

}  // namespace driverlist
