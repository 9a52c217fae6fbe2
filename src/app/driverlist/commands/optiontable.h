/// @file
/// The options of all commands as data, from which the help, the manual page and the completion are generated.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "commands/commandtable.h"

namespace driverlist {

struct OptionEntry {
  /// "--format"; for an argument without an option, "FILE".
  std::string name;
  /// All names: "-h, --help".
  std::string names;
  /// The name of its value; empty for an option without a value and for an argument.
  std::string type;
  std::string description;
  /// Its default value; empty if it has none.
  std::string byDefault;
  /// Values worth offering; not necessarily all possible values.
  std::vector<std::string> choices;
  bool isArgument = false;
  bool isRequired = false;
};

struct CommandOptions {
  const CommandEntry* command;
  std::vector<OptionEntry> options;
};

/// The name of the value of `option`; empty if it has no value or is an argument.
std::string TypeOf(const CLI::Option& option);

/// All commands with their options, in the order of the help.
std::vector<CommandOptions> OptionTable();

}  // namespace driverlist
