/// @file
/// The options of each command, one file each. Parsing fills `options`, which must outlive `command`.
#pragma once

#include <CLI/CLI.hpp>

#include "commands/options.h"

namespace driverlist {

void AddListOptions(CLI::App& command, Options& options);
void AddSnapshotOptions(CLI::App& command, Options& options);
void AddDiffOptions(CLI::App& command, Options& options);
void AddHealthOptions(CLI::App& command, Options& options);
void AddBaselineOptions(CLI::App& command, Options& options);
void AddCheckOptions(CLI::App& command, Options& options);
void AddCollectOptions(CLI::App& command, Options& options);
void AddHelpOptions(CLI::App& command, Options& options);

}  // namespace driverlist
