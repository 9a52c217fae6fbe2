/// @file
/// The list as a page to read, print and pass on.
#pragma once

#include <string>

#include "formats/table.h"
#include "inventory/head.h"
#include "inventory/record.h"

namespace driverlist {

/// What a page says besides its table.
struct HtmlContext {
  inventory::Head head;
  /// The listing of the library as on the command line: "all", "registered" or "by-device". Empty for the inventory.
  std::string mode;
  /// What the rows of the table are: the page counts them in its summary. Null for a listing of the library, whose page
  /// has no summary.
  const inventory::Records* records = nullptr;
};

/// One HTML file in UTF-8 that needs nothing beside it: the summary, and all columns and rows of `table` in their
/// order. It is read without script; its own script adds search and sorting. Its policy forbids any other script, and
/// fetching anything. Texts of any origin are shown as text whatever they hold (HtmlText()).
std::string FormatHtml(const Table& table, const HtmlContext& context);

}  // namespace driverlist
