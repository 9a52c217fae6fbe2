#include <utility>

#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"
#include "formats/diffformats.h"
#include "formats/html/htmldiff.h"
#include "inventory/comparison.h"
#include "inventory/documents.h"
#include "inventory/predicates.h"

namespace driverlist {
namespace {

inventory::Comparison Compared(const Options& options) {
  inventory::Inventory before = ReadSnapshotFile(options.file);
  // What only one of the two inventories knows cannot be compared.
  Options live = options;
  live.verify = inventory::IsVerified(before);
  inventory::Comparer comparer(std::move(before));
  if (options.newFile == Live) return comparer.Compare(LiveInventory(live));
  const auto isSettled = [&comparer](const inventory::Record& record, unsigned schema) {
    return comparer.Settle(record, schema);
  };
  return comparer.Compare(ReadSnapshotFile(options.newFile, isSettled));
}

std::string Formatted(const inventory::Comparison& comparison, const Options& options, const Page& page) {
  if (options.format == Format::Table) return FormatDiffTable(comparison, page);
  const inventory::Head head = inventory::ThisMachine(options.hostId);
  return options.format == Format::Json ? inventory::ComparisonJson(comparison, head)
                                        : FormatDiffHtml(comparison, head);
}

}  // namespace

int RunDiff(const Options& options) {
  const inventory::Comparison comparison = Compared(options);
  const auto format = [&](const Page& page) { return Formatted(comparison, options, page); };
  return Deliver(options, format, comparison.differences.empty() ? 0 : 1);
}

}  // namespace driverlist
