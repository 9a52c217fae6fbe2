#include "commands/commandoptions.h"
#include "commands/sharedoptions.h"

namespace driverlist {

void AddSnapshotOptions(CLI::App& command, Options& options) {
  AddFile(command, "FILE", options.file,
          "File to write, replaced only when the new one is complete; - is standard output");
  AddVerify(command, options);
  AddHostAndLog(command, options);
}

}  // namespace driverlist
