#include "commands/commandoptions.h"
#include "commands/sharedoptions.h"

namespace driverlist {

void AddCollectOptions(CLI::App& command, Options& options) {
  AddValue(command, "--unless-digest", options.knownDigest, "HEX", Digest(),
           "Write only the first line if the digest of the records is still this one");
  AddOutput(command, options);
  AddHostAndLog(command, options);
}

}  // namespace driverlist
