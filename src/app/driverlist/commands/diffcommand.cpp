#include <algorithm>
#include <utility>

#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"
#include "formats/diffformats.h"
#include "inventory/comparison.h"
#include "inventory/documents.h"
#include "inventory/predicates.h"

namespace driverlist {
namespace {

inventory::Comparison Compared(const Options& options) {
  inventory::Inventory before = ReadSnapshotFile(options.file);
  // What only one of the two knows cannot be compared.
  Options live = options;
  live.verify = std::any_of(before.records.begin(), before.records.end(), &inventory::IsVerified);
  inventory::Comparer comparer(std::move(before));
  if (options.newFile == Live) return comparer.Compare(LiveInventory(live));
  const auto isSettled = [&comparer](const inventory::Record& record, unsigned schema) {
    return comparer.Settle(record, schema);
  };
  return comparer.Compare(ReadSnapshotFile(options.newFile, isSettled));
}

}  // namespace

int RunDiff(const Options& options) {
  const inventory::Comparison comparison = Compared(options);
  const auto format = [&](const Page& page) {
    return options.format == Format::Json
               ? inventory::ComparisonJson(comparison, inventory::ThisMachine(options.hostId))
               : FormatDiffTable(comparison, page);
  };
  return Deliver(options, format, comparison.differences.empty() ? 0 : 1);
}

}  // namespace driverlist
