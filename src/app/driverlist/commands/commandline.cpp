#include "commands/commandline.h"

#include "commands/commandtable.h"
#include "inventory/head.h"

namespace driverlist {

std::unique_ptr<CLI::App> MakeCommandLine(Options& options, std::size_t helpWidth) {
  auto app = std::make_unique<CLI::App>(std::string(ProgramDescription), "driverlist");
  app->formatter(std::make_shared<HelpText>(helpWidth));
  // A name such as "/tmp/list.csv" is not an option. Commands inherit this setting.
  app->allow_windows_style_options(false);
  app->set_version_flag("--version", "driverlist " + inventory::ToolVersion(), "Print the version");
  app->require_subcommand(1);
  app->set_help_flag("-h,--help", "Print this help");
  for (const CommandEntry& entry : CommandTable()) {
    CLI::App* const command = app->add_subcommand(std::string(entry.name), std::string(entry.description));
    entry.addOptions(*command->group("Commands"), options);
  }
  return app;
}

}  // namespace driverlist
