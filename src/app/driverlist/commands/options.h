/// @file
/// The command line of the program.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/findingselection.h"
#include "commands/selection.h"
#include "formats/formats.h"
#include "inventory/listing.h"
#include "inventory/members.h"
#include "inventory/record.h"

namespace driverlist {

enum class Command { List, Snapshot, Diff, Health, Baseline, Check, Collect, Help };

/// Each command supports some of them.
enum class Format { Table, Csv, Json, JsonLines, Html, Markdown, JUnit };

/// Instead of a snapshot: this machine as it is now.
constexpr std::string_view Live = "live";

/// Instead of a file to write.
constexpr std::string_view StandardOutput = "-";

/// Options whose comment names no command belong to all commands. Texts and paths are UTF-8.
struct Options {
  Command command = Command::List;
  Format format = Format::Table;
  /// Path; standard output if empty. Not for `snapshot`.
  std::string output;
  std::optional<int> logLevel;
  /// Path; standard error if empty and a level was chosen.
  std::string logFile;
  bool quiet = false;
  /// Identifies the machine instead of its GUID; empty for the GUID.
  std::string hostId;

  /// Whether to verify the images of services; `diff` decides this itself.
  bool verify = false;
  /// Paths of the lists of known drivers in which to look images up; if empty, the list next to the program.
  std::vector<std::string> known;

  /// `list`: the library's listing to show; if empty, the inventory is shown.
  std::optional<inventory::ListingMode> mode;
  /// `list`: kinds of records to show; empty for all. Not with a mode.
  std::vector<inventory::Kind> kinds;
  /// `list`: whether records of the maker of Windows are left out. Not with a mode.
  bool thirdPartyOnly = false;
  /// `list`, `health`, `baseline`: the snapshot to show or examine; empty for this machine. Not with a mode.
  std::string from;
  /// `list`: members whose values are counted; no records are shown then.
  std::vector<inventory::Column> groupBy;
  /// `list`: whether no row, or any row, is a failure.
  bool failIfNone = false;
  bool failIfAny = false;
  /// `list`: the columns to show; by default the most useful ones for the table and the page, otherwise all.
  std::vector<inventory::Column> columns;
  /// `list`: whether the user chose them.
  bool columnsChosen = false;
  /// `list`.
  Selection selection;
  /// `list`.
  CsvStyle csv;

  /// `collect`: the digest of the lines that were sent last; empty to write all lines.
  std::string knownDigest;

  /// `snapshot`, `baseline`: the file to write, or StandardOutput. `diff`: the older inventory. `check`: the policy.
  std::string file;
  /// `diff`: the newer inventory, or Live.
  std::string newFile;
  /// `health`, `baseline`: which findings count.
  FindingSelection findings;
  /// `health`: the baseline to hold against; empty for no baseline.
  std::string baseline;
  /// `check`: the snapshots to check instead of this machine; empty for that.
  std::vector<std::string> fromEach;

  /// `help`: what to explain; empty for all commands.
  std::string topic;
};

/// What a command line asks for: options to run with, or a text to print before leaving with `exitCode`.
struct ParsedCommandLine {
  std::optional<Options> options;
  /// For standard output if `exitCode` is 0, otherwise one sentence for standard error.
  std::string text;
  int exitCode = 0;
};

/// Reads the arguments after the program's name, in UTF-8. Arguments that do not begin with a command belong to `list`.
/// Help has lines of up to `helpWidth` columns.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments, std::size_t helpWidth = 79);

}  // namespace driverlist
