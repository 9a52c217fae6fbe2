/// @file
/// What the program can do. Each command returns the exit code.
#pragma once

#include "commands/options.h"

namespace driverlist {

/// 0; 1 when the snapshot to list cannot be read or the output not be written, or when the user calls what is left a
/// failure, and then 2 means trouble.
int RunList(const Options& options);

/// 0; 1 when the file cannot be written, which is then as it was.
int RunSnapshot(const Options& options);

/// 0; 1 when the output cannot be written.
int RunCollect(const Options& options);

/// 0 when both inventories are the same, 1 when they differ, 2 when one cannot be read or the output not be written.
int RunDiff(const Options& options);

/// 0 when nothing deserves a look, 1 when something does, 2 when the snapshot cannot be read or the output not be
/// written.
int RunHealth(const Options& options);

/// 0; 1 when the output cannot be written.
int RunHelp(const Options& options);

}  // namespace driverlist
