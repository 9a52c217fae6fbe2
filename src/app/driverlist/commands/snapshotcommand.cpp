#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"

namespace driverlist {

int RunSnapshot(const Options& options) {
  const std::string text = inventory::SnapshotText(LiveInventory(options));
  Options delivery = options;
  delivery.output = options.file == StandardOutput ? std::string() : options.file;
  return Deliver(delivery, text, 0);
}

}  // namespace driverlist
