#include "commands/commandoptions.h"
#include "commands/sharedoptions.h"

namespace driverlist {
namespace {

const Formats& CheckFormats() {
  static const Formats formats = {{"table", Format::Table},
                                  {"json", Format::Json},
                                  {"junit", Format::JUnit},
                                  {"csv", Format::Csv},
                                  {"markdown", Format::Markdown}};
  return formats;
}

}  // namespace

void AddCheckOptions(CLI::App& command, Options& options) {
  AddFile(command, "POLICY", options.file, "The policy: a file of JSON, which the manual describes");
  AddValues(command, "--from", options.fromEach, "FILE", NotEmpty("name"),
            std::string(FromMeaning) + "; may be given several times");
  AddKnown(command, options);
  AddFormat(command, CheckFormats(), options);
  AddOutput(command, options);
  AddHostAndLog(command, options);
  command.final_callback([&command] {
    RefuseTogether(command, "--from", "--host-id");
    RefuseTogether(command, "--from", "--known");
  });
}

}  // namespace driverlist
