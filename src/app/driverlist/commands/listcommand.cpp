#include <algorithm>
#include <numeric>
#include <utility>

#include "commands/commands.h"
#include "commands/delivery.h"
#include "formats/formats.h"
#include "formats/html/htmlformat.h"
#include "inventory/inventory.h"
#include "inventory/predicates.h"
#include "terminal/progress.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::Record;
using inventory::Records;

/// What a list shows.
struct List {
  ListHead head;
  Table table;
  /// What the rows of the table are; empty for a listing of the library.
  Records records;
};

bool IsChosen(const Record& record, const Options& options) {
  const auto& kinds = options.kinds;
  const bool isOfKind = kinds.empty() || std::find(kinds.begin(), kinds.end(), record.kind) != kinds.end();
  return isOfKind && (!options.thirdPartyOnly || inventory::IsThirdParty(record));
}

/// The library's listing, as it is.
List ListedDrivers(const Options& options, inventory::ListingMode mode) {
  return {{inventory::ThisMachine(options.hostId), std::string(inventory::ModeName(mode))},
          TableOf(inventory::Listed(mode)),
          {}};
}

/// The machine's inventory, or the part of it that was asked for.
List ListedRecords(const Options& options) {
  inventory::Inventory inventory = inventory::Collect(options.hostId);
  Records records;
  for (Record& record : inventory.records) {
    if (IsChosen(record, options)) records.push_back(std::move(record));
  }
  Table table = TableOf(records);
  return {{std::move(inventory.head), {}}, std::move(table), std::move(records)};
}

List Listed(const Options& options) {
  const Progress progress(WantsProgress(options));
  return options.mode ? ListedDrivers(options, *options.mode) : ListedRecords(options);
}

/// Of `list`, what the user selected.
List Selected(List list, const Options& options) {
  const std::vector<std::size_t> rows = SelectedRows(list.table, options.selection);
  Records records;
  for (const std::size_t row : rows) {
    if (!list.records.empty()) records.push_back(std::move(list.records[row]));
  }
  return {std::move(list.head), PartOf(std::move(list.table), rows, options.columns), std::move(records)};
}

/// Some columns have no place on a narrow page, unless they were asked for.
Table FitFor(const Page& page, Table table, const Options& options) {
  // A terminal of 120 columns, whose last stays empty.
  constexpr std::size_t wide = 119;
  if (options.columnsChosen || page.width == 0 || page.width >= wide) return table;
  std::vector<Column> columns;
  std::copy_if(table.columns.begin(), table.columns.end(), std::back_inserter(columns),
               [](const Column& column) { return !column.isForWideTables; });
  std::vector<std::size_t> rows(table.rows.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  return PartOf(std::move(table), rows, columns);
}

std::string Formatted(const Options& options, List list, const Page& page) {
  switch (options.format) {
    case Format::Csv:
      return FormatCsv(list.table, options.csv);
    case Format::Json:
      return FormatJson(list.table, list.head);
    case Format::JsonLines:
      return FormatJsonLines(list.table, list.head);
    case Format::Html:
      return FormatHtml(list.table, {list.head.head, list.head.mode, options.mode ? nullptr : &list.records});
    case Format::Markdown:
      return FormatMarkdown(list.table);
    case Format::Table:
      break;
  }
  return FormatTable(FitFor(page, std::move(list.table), options), page);
}

}  // namespace

int RunList(const Options& options) {
  List list = Selected(Listed(options), options);
  return Deliver(
      options, [&](const Page& page) { return Formatted(options, std::move(list), page); }, 0);
}

}  // namespace driverlist
