#include "commands.h"
#include "delivery.h"
#include "inventory.h"
#include "output.h"
#include "progress.h"
#include "snapshotfile.h"

namespace driverlist {

int RunSnapshot(const Options& options) {
  std::string text;
  {
    const Progress progress(WantsProgress(options));
    text = SnapshotText(LiveInventory());
  }
  const std::string problem = WriteFileWhole(options.file, text);
  if (problem.empty()) return 0;
  return Fail(TroubleCode(options.command), "cannot write " + options.file + ": " + problem);
}

}  // namespace driverlist
