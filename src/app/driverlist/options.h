/// @file
/// The command line of the program.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "columns.h"
#include "driverinfo.h"

namespace driverlist {

enum class Format { Table, Csv, Json };

struct Options {
  Orvane::DriverInfoSetType mode = Orvane::All;
  Format format = Format::Table;
  /// What to show; for the table without a choice the columns that most people ask for, else all.
  std::vector<Column> columns;
  /// Path in UTF-8; standard output when empty.
  std::string output;
  std::optional<int> logLevel;
  /// Path in UTF-8; standard error when empty and a level was chosen.
  std::string logFile;
};

/// Text of the option `mode`.
std::string ModeName(Orvane::DriverInfoSetType mode);

/// What a command line asks for: options to run with, or a text to print before leaving with `exitCode`.
struct ParsedCommandLine {
  std::optional<Options> options;
  /// For standard output when `exitCode` is 0, else one sentence for standard error.
  std::string text;
  int exitCode = 0;
};

/// Reads the arguments behind the program's name, in UTF-8.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace driverlist
