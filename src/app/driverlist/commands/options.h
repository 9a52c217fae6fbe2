/// @file
/// The command line of the program.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "commands/selection.h"
#include "formats/formats.h"
#include "inventory/listing.h"
#include "inventory/members.h"
#include "inventory/record.h"

namespace driverlist {

enum class Command { List, Snapshot, Diff, Health };

/// `diff` and `health` know the table and JSON.
enum class Format { Table, Csv, Json, JsonLines, Html, Markdown };

/// Options that name no command belong to all of them. Texts and paths are UTF-8.
struct Options {
  Command command = Command::List;
  Format format = Format::Table;
  /// Path; standard output when empty. Not of `snapshot`.
  std::string output;
  std::optional<int> logLevel;
  /// Path; standard error when empty and a level was chosen.
  std::string logFile;
  bool quiet = false;
  /// Identifies the machine instead of its own GUID; empty for that.
  std::string hostId;

  /// `list`: the library's listing to show; without it, the inventory is shown.
  std::optional<inventory::ListingMode> mode;
  /// `list`: kinds of records to show; empty for all. Not with a mode.
  std::vector<inventory::Kind> kinds;
  /// `list`: whether records of the maker of Windows are left out. Not with a mode.
  bool thirdPartyOnly = false;
  /// `list`: what to show; for the table and the page without a choice the columns that most people ask for, else all.
  std::vector<inventory::Column> columns;
  /// `list`: whether the user chose them.
  bool columnsChosen = false;
  /// `list`.
  Selection selection;
  /// `list`.
  CsvStyle csv;

  /// `snapshot`: the file to write. `diff`: the older inventory.
  std::string file;
  /// `diff`: the newer inventory, "live" for this machine as it is.
  std::string newFile;
};

/// What a command line asks for: options to run with, or a text to print before leaving with `exitCode`.
struct ParsedCommandLine {
  std::optional<Options> options;
  /// For standard output when `exitCode` is 0, else one sentence for standard error.
  std::string text;
  int exitCode = 0;
};

/// Reads the arguments behind the program's name, in UTF-8. Those that do not begin with a command are those of `list`.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace driverlist
