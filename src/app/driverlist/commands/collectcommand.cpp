#include "commands/commands.h"
#include "commands/delivery.h"
#include "inventory/collection.h"
#include "inventory/inventory.h"
#include "terminal/progress.h"

namespace driverlist {
namespace {

inventory::Inventory Collected(const Options& options) {
  const Progress progress(WantsProgress(options));
  return inventory::Collect({options.hostId});
}

}  // namespace

int RunCollect(const Options& options) {
  return Deliver(options, inventory::CollectionLines(Collected(options), options.knownDigest), 0);
}

}  // namespace driverlist
