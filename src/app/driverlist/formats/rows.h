/// @file
/// Rows of text, aligned.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "formats/tone.h"
#include "terminal/page.h"

namespace driverlist {

struct TextCell {
  /// UTF-8 of any origin: it is shown as Visible() says.
  std::string text;
  Tone tone = Tone::Plain;
};

struct RowColumn {
  std::string title;
  /// Columns of the page that it keeps while another one can still give some; 0 when all are worth the same.
  std::size_t floor = 0;
  /// Whether a text that does not fit loses its beginning rather than its end.
  bool keepsEnd = false;
};

/// Visible() `text` in pieces of at most `columns` (not 0) columns of a terminal, broken at blanks, which are dropped,
/// and within words that are longer.
std::vector<std::string> Wrapped(const std::string& text, std::size_t columns);

/// A line of titles and one line per row, columns aligned by blanks, lines ended by "\n". Each row has a cell for each
/// column. Where a line would be wider than the page, columns are cut: the widest of those above their floors, and when
/// all are down at them, the widest. Empty without columns.
std::string FormatRows(const std::vector<RowColumn>& columns, std::vector<std::vector<TextCell>> rows,
                       const Page& page);

}  // namespace driverlist
