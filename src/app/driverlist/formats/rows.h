/// @file
/// Rows of text, aligned.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "formats/tone.h"
#include "terminal/page.h"

namespace driverlist {

struct TextCell {
  /// UTF-8 of any origin, shown as by Visible().
  std::string text;
  Tone tone = Tone::Plain;
  /// Whether it must not be cut, such as a version.
  bool isWhole = false;
};

struct RowColumn {
  std::string title;
  /// The width that the column keeps while another column can still shrink; 0 if all shrink alike.
  std::size_t floor = 0;
  /// Whether a text that does not fit is cut at its beginning rather than at its end.
  bool keepsEnd = false;
  /// Its place, from 1, in the order in which columns are left out of a page that is too narrow, the empty ones first;
  /// 0 if it never is. The text below the table says that --columns shows it.
  unsigned leavesAs = 0;
};

/// A row has a cell for each column.
using TextRows = std::vector<std::vector<TextCell>>;

/// A line of titles and one line per row, columns aligned by blanks, lines ended by "\n". If the page is too narrow,
/// texts are cut and columns are left out, as in LayOut(); a line below names the columns that were left out. If that
/// is not enough, each row becomes a paragraph with a line for each cell that is not empty, and no column is left out.
/// Empty without columns.
std::string FormatRows(const std::vector<RowColumn>& columns, TextRows rows, const Page& page);

/// The same, or nothing if a column would have to be narrower than its floor.
std::optional<std::string> FormatRowsAtTheirFloors(const std::vector<RowColumn>& columns, TextRows rows,
                                                   const Page& page);

}  // namespace driverlist
