#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"
#include "formats/healthformats.h"
#include "inventory/documents.h"
#include "inventory/healthrules.h"

namespace driverlist {

int RunHealth(const Options& options) {
  const inventory::Inventory inventory = ChosenInventory(options);
  const std::vector<inventory::Finding> findings = inventory::Examine(inventory.records);
  const auto format = [&](const Page& page) {
    return options.format == Format::Json ? inventory::FindingsJson(findings, inventory)
                                          : FormatHealthTable(findings, inventory, page);
  };
  return Deliver(options, format, findings.empty() ? 0 : 1);
}

}  // namespace driverlist
