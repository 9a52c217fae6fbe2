/// @file
/// The command line of the program.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/selection.h"
#include "formats/formats.h"
#include "inventory/listing.h"
#include "inventory/members.h"
#include "inventory/record.h"

namespace driverlist {

enum class Command { List, Snapshot, Diff, Health, Collect, Help };

/// `diff` and `health` know the table and JSON.
enum class Format { Table, Csv, Json, JsonLines, Html, Markdown };

/// In place of a snapshot: this machine as it is now.
constexpr std::string_view Live = "live";

/// In place of a file to write.
constexpr std::string_view StandardOutput = "-";

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

  /// Whether the images of services are verified; `diff` decides that by itself.
  bool verify = false;
  /// Paths of the lists of known drivers to look them up in; the list beside the program without one.
  std::vector<std::string> known;

  /// `list`: the library's listing to show; without it, the inventory is shown.
  std::optional<inventory::ListingMode> mode;
  /// `list`: kinds of records to show; empty for all. Not with a mode.
  std::vector<inventory::Kind> kinds;
  /// `list`: whether records of the maker of Windows are left out. Not with a mode.
  bool thirdPartyOnly = false;
  /// `list`, `health`: the snapshot to show or examine instead of this machine; empty for that. Not with a mode.
  std::string from;
  /// `list`: members whose values are counted instead of showing records.
  std::vector<inventory::Column> groupBy;
  /// `list`: whether no row, or any row, is a failure.
  bool failIfNone = false;
  bool failIfAny = false;
  /// `list`: what to show; for the table and the page without a choice the columns that most people ask for, else all.
  std::vector<inventory::Column> columns;
  /// `list`: whether the user chose them.
  bool columnsChosen = false;
  /// `list`.
  Selection selection;
  /// `list`.
  CsvStyle csv;

  /// `collect`: the digest of the lines that were sent before; empty to write all lines.
  std::string knownDigest;

  /// `snapshot`: the file to write, or StandardOutput. `diff`: the older inventory.
  std::string file;
  /// `diff`: the newer inventory, or Live.
  std::string newFile;
  /// `help`: what to explain; empty for all commands.
  std::string topic;
};

/// What a command line asks for: options to run with, or a text to print before leaving with `exitCode`.
struct ParsedCommandLine {
  std::optional<Options> options;
  /// For standard output when `exitCode` is 0, else one sentence for standard error.
  std::string text;
  int exitCode = 0;
};

/// Reads the arguments behind the program's name, in UTF-8. Those that do not begin with a command are those of `list`.
/// Help has lines of up to `helpWidth` columns.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments, std::size_t helpWidth = 79);

}  // namespace driverlist
