/// @file
/// The commands of the program, in one table. A new command is a line in it, a file for its options and a function that
/// runs it.
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <string>
#include <string_view>

#include "commands/options.h"

namespace driverlist {

/// The description of the program in the help.
constexpr std::string_view ProgramDescription =
    "Lists the device drivers of this machine, and finds what changed and what deserves a look.";

/// A command line worth copying. Tests run all of them.
struct Example {
  /// The arguments after the program's name.
  std::string_view arguments;
  std::string_view meaning;
};

struct CommandEntry {
  Command command = Command::List;
  /// Name on the command line.
  std::string_view name;
  /// For the help.
  std::string_view description;
  /// Adds its options.
  void (*addOptions)(CLI::App& command, Options& options);
  /// Runs it and returns the exit code.
  int (*run)(const Options& options);
  /// The exit code if something goes wrong.
  int troubleCode = 1;
  /// For the help.
  std::array<Example, 3> examples;
};

/// All commands, in the order of the help.
const std::array<CommandEntry, 8>& CommandTable();

const CommandEntry& EntryOf(Command command);

/// The command of that name; null if there is no such command.
const CommandEntry* FindCommand(const std::string& name);

/// Runs the command that was parsed, and returns the exit code.
int RunCommand(const Options& options);

}  // namespace driverlist
