/// @file
/// Rows of text, aligned.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace driverlist {

/// How a text stands out on a terminal that shows colours.
enum class Colour { None, Green, Yellow, Red };

struct Cell {
  /// UTF-8; control characters are shown as "?".
  std::string text;
  Colour colour = Colour::None;
};

struct TableColumn {
  std::string title;
  /// Characters that stay while another column can still give some; 0 when all are worth the same.
  std::size_t floor = 0;
  /// Whether a text that does not fit loses its beginning; else its end.
  bool keepsEnd = false;
};

/// What a table is written on.
struct Page {
  /// Characters of a line; 0 when lines may be as long as they are.
  std::size_t width = 0;
  bool colours = false;
};

/// `text` in pieces of at most `columns` (not 0) characters, broken at blanks, which are dropped, and within words that are
/// longer.
std::vector<std::string> Wrapped(const std::string& text, std::size_t columns);

/// A line of titles and one line per row, columns aligned by blanks, lines ended by "\n". Where a line would be wider than the
/// page, columns are cut: the widest of those above their floors, and when all are down at them, the widest. Empty without
/// columns.
std::string FormatRows(const std::vector<TableColumn>& columns, const std::vector<std::vector<Cell>>& rows,
                       const Page& page);

}  // namespace driverlist
