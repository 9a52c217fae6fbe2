/// @file
/// The commands of the program, in one table: a new one is a line of it, an options room and a function that runs.
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <string>
#include <string_view>

#include "commands/options.h"

namespace driverlist {

/// What the program is for, in the help.
constexpr std::string_view ProgramDescription =
    "Lists the device drivers of this machine, and finds what changed and what deserves a look.";

/// A command line that is worth copying. Tests run them all.
struct Example {
  /// Behind the program's name.
  std::string_view arguments;
  std::string_view meaning;
};

struct CommandEntry {
  Command command = Command::List;
  /// On the command line.
  std::string_view name;
  /// For the help.
  std::string_view description;
  /// Adds its options.
  void (*addOptions)(CLI::App& command, Options& options);
  /// Runs it and returns the exit code.
  int (*run)(const Options& options);
  /// The exit code when something goes wrong.
  int troubleCode = 1;
  /// For the help.
  std::array<Example, 3> examples;
};

/// All commands, in the order of the help.
const std::array<CommandEntry, 6>& CommandTable();

const CommandEntry& EntryOf(Command command);

/// The command of that name; null when there is none.
const CommandEntry* FindCommand(const std::string& name);

/// Runs the command that was parsed, and returns the exit code.
int RunCommand(const Options& options);

}  // namespace driverlist
