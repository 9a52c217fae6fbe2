#include "commands/optiontable.h"

#include "commands/commandline.h"
#include "commands/sharedoptions.h"

namespace driverlist {
namespace {

OptionEntry EntryOf(CLI::Option& option) {
  OptionEntry entry;
  entry.isArgument = option.get_positional();
  entry.name = entry.names = option.get_name(entry.isArgument);
  if (!entry.isArgument && !option.get_snames().empty()) {
    entry.name = "--" + option.get_lnames().front();
    entry.names = "-" + option.get_snames().front() + ", " + entry.name;
  }
  entry.type = TypeOf(option);
  entry.description = option.get_description();
  entry.byDefault = option.get_default_str();
  entry.choices = ChoicesOf(option);
  entry.isRequired = option.get_required();
  return entry;
}

}  // namespace

std::string TypeOf(const CLI::Option& option) {
  if (option.get_type_size() == 0) return std::string();
  // CLI11 appends the names of its validators.
  const std::string type = option.get_type_name();
  return type.substr(0, type.find(':'));
}

std::vector<CommandOptions> OptionTable() {
  Options unused;
  const std::unique_ptr<CLI::App> app = MakeCommandLine(unused, UsualHelpWidth);
  std::vector<CommandOptions> table;
  for (const CommandEntry& command : CommandTable()) {
    CommandOptions& entry = table.emplace_back();
    entry.command = &command;
    for (CLI::Option* const option : app->get_subcommand(std::string(command.name))->get_options()) {
      entry.options.push_back(EntryOf(*option));
    }
  }
  return table;
}

}  // namespace driverlist
