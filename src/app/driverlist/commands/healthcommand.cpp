#include "commands/commands.h"
#include "commands/delivery.h"
#include "formats/healthformats.h"
#include "inventory/healthrules.h"
#include "inventory/inventory.h"
#include "terminal/progress.h"

namespace driverlist {
namespace {

inventory::Inventory Collected(const Options& options) {
  const Progress progress(WantsProgress(options));
  return inventory::Collect(options.hostId);
}

}  // namespace

int RunHealth(const Options& options) {
  const inventory::Inventory inventory = Collected(options);
  const std::vector<inventory::Finding> findings = inventory::Examine(inventory.records);
  const auto format = [&](const Page& page) {
    return options.format == Format::Json ? FormatHealthJson(findings, inventory.head)
                                          : FormatHealthTable(findings, page);
  };
  return Deliver(options, format, findings.empty() ? 0 : 1);
}

}  // namespace driverlist
