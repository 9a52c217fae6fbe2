#include "commands/commandoptions.h"
#include "commands/sharedoptions.h"

namespace driverlist {

void AddHealthOptions(CLI::App& command, Options& options) {
  command
      .add_flag(
          "--no-verify",
          "Do not read the images of services: nothing is found then by their signatures and by lists of known drivers")
      ->disable_flag_override();
  AddKnown(command, options);
  AddFrom(command, options);
  AddFormat(command, ReportFormats(), options);
  AddOutput(command, options);
  AddHostAndLog(command, options);
  command.final_callback([&command, &options] {
    RefuseTogether(command, "--from", "--host-id");
    RefuseTogether(command, "--from", "--known");
    RefuseTogether(command, "--known", "--no-verify");
    options.verify = command.count("--no-verify") == 0;
  });
}

}  // namespace driverlist
