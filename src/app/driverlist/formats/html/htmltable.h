/// @file
/// The table of a page.
#pragma once

#include <string>

#include "formats/table.h"

namespace driverlist {

/// The texts of a table besides its cells.
struct TableTexts {
  /// For screen readers.
  std::string caption;
  /// The sentence for a table without rows.
  std::string empty;
};

/// All columns and rows of `table`, in their order, and a sentence when there are no rows. RowId() of each row is its
/// `id`. The style depends on the kind of value and the tone of a cell, never on its text.
std::string TableHtml(const Table& table, const TableTexts& texts);

/// The identifier of the row with this index.
std::string RowId(std::size_t row);

}  // namespace driverlist
