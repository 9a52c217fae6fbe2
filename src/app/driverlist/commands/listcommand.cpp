#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"
#include "formats/formats.h"
#include "formats/healthformats.h"
#include "formats/html/htmlformat.h"
#include "inventory/healthrules.h"
#include "inventory/predicates.h"
#include "terminal/output.h"
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
  /// The records behind the rows of the table; empty if the rows are not records of the inventory.
  Records records;
  /// For a page whose images were verified: the findings about the whole inventory, and notes on them.
  std::optional<std::vector<inventory::Finding>> findings = std::nullopt;
  std::vector<std::string> notes = {};
};

bool IsChosen(const Record& record, const Options& options) {
  const auto& kinds = options.kinds;
  const bool isOfKind = kinds.empty() || std::find(kinds.begin(), kinds.end(), record.kind) != kinds.end();
  return isOfKind && (!options.thirdPartyOnly || inventory::IsThirdParty(record));
}

/// The library's listing, unchanged.
List ListedDrivers(const Options& options, inventory::ListingMode mode) {
  const Progress progress(WantsProgress(options));
  return {{inventory::ThisMachine(options.hostId), std::string(inventory::ModeName(mode))},
          TableOf(inventory::Listed(mode)),
          {}};
}

/// The inventory, or the part of it that was asked for.
List ListedRecords(const Options& options) {
  inventory::Inventory inventory = ChosenInventory(options);
  List list;
  if (options.format == Format::Html && inventory::IsVerified(inventory)) {
    list.findings = inventory::Examine(inventory.records);
    if (inventory.isVerified) list.notes.push_back(ListsText(inventory.lists, inventory.head.time));
  }
  for (Record& record : inventory.records) {
    if (IsChosen(record, options)) list.records.push_back(std::move(record));
  }
  list.head.head = std::move(inventory.head);
  list.table = TableOf(list.records);
  return list;
}

List Listed(const Options& options) {
  return options.mode ? ListedDrivers(options, *options.mode) : ListedRecords(options);
}

/// The `records` that the rows with these indexes show.
Records PartOf(Records records, const std::vector<std::size_t>& rows) {
  Records part;
  for (const std::size_t row : rows) {
    if (!records.empty()) part.push_back(std::move(records[row]));
  }
  return part;
}

/// How many records of each kind there are in `rows` of `list`.
List Counted(List list, const std::vector<std::size_t>& rows, const Options& options) {
  Table groups = Grouped(list.table, rows, options.groupBy);
  std::vector<std::size_t> shown(groups.rows.size());
  std::iota(shown.begin(), shown.end(), std::size_t{0});
  SortAndCut(groups, options.selection, shown);
  list.head.counts = true;
  const std::vector<Column> columns = groups.columns;
  return {std::move(list.head), driverlist::PartOf(std::move(groups), shown, columns), {}};
}

/// The part of `list` that the user selected.
List Selected(List list, const Options& options) {
  std::vector<std::size_t> rows = ChosenRows(list.table, options.selection, list.head.head.time);
  if (!options.groupBy.empty()) return Counted(std::move(list), rows, options);
  SortAndCut(list.table, options.selection, rows);
  list.table = driverlist::PartOf(std::move(list.table), rows, options.columns);
  list.records = PartOf(std::move(list.records), rows);
  return list;
}

/// The table of `list`. Columns that the user asked for stay on a narrow page, and so do those of groups, which no
/// option would bring back.
Table ForTerminal(Table table, const Options& options) {
  if (!options.columnsChosen && options.groupBy.empty()) return table;
  for (Column& column : table.columns) column.leavesAs = 0;
  return table;
}

std::string FormattedPage(const Options& options, const List& list) {
  const bool showsRecords = !options.mode && options.groupBy.empty();
  HtmlContext context = {list.head.head, list.head.mode, showsRecords ? &list.records : nullptr};
  context.findings = list.findings ? &*list.findings : nullptr;
  context.notes = list.notes;
  return FormatHtml(list.table, context);
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
      return FormattedPage(options, list);
    case Format::Markdown:
      return FormatMarkdown(list.table);
    case Format::Table:
    case Format::JUnit:
      break;
  }
  return FormatTable(ForTerminal(std::move(list.table), options), page);
}

}  // namespace

int RunList(const Options& options) {
  List list = Selected(Listed(options), options);
  const bool isEmpty = list.table.rows.empty();
  if (isEmpty) WriteStandardError("No drivers match.\n");
  const bool hasFailed = isEmpty ? options.failIfNone : options.failIfAny;
  return Deliver(
      options, [&](const Page& page) { return Formatted(options, std::move(list), page); }, hasFailed ? 1 : 0);
}

}  // namespace driverlist
