#include "commands/commandoptions.h"
#include "commands/sharedoptions.h"

namespace driverlist {
namespace {

/// A file that does not exist yet cannot be the older one.
void RefuseLiveAsOld(const Options& options) {
  if (options.file != Live) return;
  const std::string file = options.newFile == Live ? "FILE" : options.newFile;
  throw CLI::ValidationError("OLD", "\"live\" can only be the newer side: write \"driverlist diff " + file + " live\"");
}

}  // namespace

void AddDiffOptions(CLI::App& command, Options& options) {
  AddFile(command, "OLD", options.file, "A snapshot");
  Offer(*AddFile(command, "NEW", options.newFile, "Another snapshot, or \"live\": this machine as it is now"),
        {std::string(Live)});
  AddFormat(command, ReportFormats(), options);
  AddOutput(command, options);
  AddHostAndLog(command, options);
  command.final_callback([&options] { RefuseLiveAsOld(options); });
}

}  // namespace driverlist
