#include "commands/commands.h"
#include "commands/delivery.h"
#include "inventory/inventory.h"
#include "inventory/snapshot.h"
#include "terminal/output.h"
#include "terminal/progress.h"

namespace driverlist {
namespace {

inventory::Inventory Collected(const Options& options) {
  const Progress progress(WantsProgress(options));
  return inventory::Collect(options.hostId);
}

}  // namespace

int RunSnapshot(const Options& options) {
  const std::string problem = WriteFileWhole(options.file, inventory::SnapshotText(Collected(options)));
  if (problem.empty()) return 0;
  return Fail(TroubleCode(options.command), "cannot write " + options.file + ": " + problem);
}

}  // namespace driverlist
