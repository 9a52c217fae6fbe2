/// @file
/// The list as a page to read, print and pass on.
#pragma once

#include <string>
#include <vector>

#include "formats/table.h"
#include "inventory/head.h"
#include "inventory/healthrules.h"
#include "inventory/record.h"

namespace driverlist {

/// The content of a page besides its table.
struct HtmlContext {
  inventory::Head head;
  /// The listing of the library as on the command line: "all", "registered" or "by-device". Empty for the inventory.
  std::string mode;
  /// The records in the table, which the summary of the page counts; a row opens to all members of its record. Null for
  /// a listing of the library and for counts: such a page has only a table.
  const inventory::Records* records = nullptr;
  /// The findings in the inventory that the records come from; null if it was not examined. Findings about other
  /// records are left out.
  const std::vector<inventory::Finding>* findings = nullptr;
  /// Sentences below the findings, without their full stops.
  std::vector<std::string> notes = {};
  /// Whether the page is about the findings.
  bool isExamination = false;
};

/// A single HTML file in UTF-8 that needs no other file: findings, summary, and all columns and rows of `table` in
/// their order. It can be read without scripts; its own script adds search, filters, sorting, columns, and rows that
/// open. Its policy forbids any other script, and fetching anything. Texts of any origin are shown as plain text
/// (HtmlText()).
std::string FormatHtml(const Table& table, const HtmlContext& context);

}  // namespace driverlist
