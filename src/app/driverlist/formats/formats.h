/// @file
/// The formats in which the program shows a list of drivers. All are UTF-8 and the same in every locale. Each shows all
/// columns and rows of a table, in their order.
#pragma once

#include <string>

#include "formats/table.h"
#include "inventory/head.h"
#include "terminal/page.h"

namespace driverlist {

/// The facts in a document about the list as a whole.
struct ListHead {
  inventory::Head head;
  /// Which listing of the library it is, as on the command line; empty for the inventory.
  std::string mode;
  /// Whether the rows are groups with their counts, not drivers.
  bool counts = false;
};

/// One line per row below a line of column names, as FormatRows() lays them out. The only form that leaves out columns:
/// those with leavesAs, if the page is too narrow.
std::string FormatTable(const Table& table, const Page& page);

struct CsvStyle {
  /// Whether texts are written unchanged. Otherwise texts that a spreadsheet would take for a formula get an apostrophe
  /// in front.
  bool isRaw = false;
  /// Whether it begins with a byte order mark, by which Excel recognises UTF-8.
  bool hasBom = false;
};

/// RFC 4180, with a header record of column names.
std::string FormatCsv(const Table& table, const CsvStyle& style);

/// One object: the head, "mode" if there is one, and "drivers" ("groups" if rows are counted), an array of objects that
/// have the columns as members, without members that have no value.
std::string FormatJson(const Table& table, const ListHead& head);

/// One such object per row and line, each including the members of the head.
std::string FormatJsonLines(const Table& table, const ListHead& head);

/// A table of GitHub Flavored Markdown, with every text escaped.
std::string FormatMarkdown(const Table& table);

}  // namespace driverlist
