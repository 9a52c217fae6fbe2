#include <string_view>

#include "formats/formats.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

/// `text`, escaped so that it stands for itself in a cell.
std::string Escaped(std::string_view text) {
  constexpr std::string_view special = "\\`*_[]<>|~&#";
  std::string escaped;
  for (const char c : Visible(text)) {
    if (special.find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

/// A line with a cell for each of `items`, as `text` returns it.
template <typename Items, typename Text>
std::string Line(const Items& items, Text text) {
  std::string line = "|";
  for (const auto& item : items) line += " " + text(item) + " |";
  return line + "\n";
}

}  // namespace

std::string FormatMarkdown(const Table& table) {
  using inventory::Column;
  std::string text = Line(table.columns, [](const Column& column) { return Escaped(column.name); });
  text += Line(table.columns, [](const Column&) { return std::string("---"); });
  for (const auto& row : table.rows) {
    text += Line(row, [](const Cell& cell) { return Escaped(inventory::TextOf(cell.value)); });
  }
  return text;
}

}  // namespace driverlist
