/// @file
/// The options of all commands as data: what help, the manual page and the completion are made from.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "commands/commandtable.h"

namespace driverlist {

struct OptionEntry {
  /// "--format", or of an argument without option "FILE".
  std::string name;
  /// All names: "-h, --help".
  std::string names;
  /// What its value is called; empty for an option without value, and for an argument.
  std::string type;
  std::string description;
  /// Its value when it is not there; empty for none.
  std::string byDefault;
  /// Values that are worth offering; not all that there can be.
  std::vector<std::string> choices;
  bool isArgument = false;
  bool isRequired = false;
};

struct CommandOptions {
  const CommandEntry* command;
  std::vector<OptionEntry> options;
};

/// What the value of `option` is called; empty when it has none, or is an argument.
std::string TypeOf(const CLI::Option& option);

/// All commands with their options, in the order of the help.
std::vector<CommandOptions> OptionTable();

}  // namespace driverlist
