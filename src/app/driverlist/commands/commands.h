/// @file
/// The commands of the program. Each returns the exit code.
#pragma once

#include "commands/options.h"

namespace driverlist {

/// 0; 1 if the snapshot cannot be read or the output cannot be written. With --fail-if-none or --fail-if-any, 1 means
/// that its condition is met, and 2 means trouble.
int RunList(const Options& options);

/// 0; 1 if the file cannot be written; it then stays unchanged.
int RunSnapshot(const Options& options);

/// 0; 1 if the output cannot be written.
int RunCollect(const Options& options);

/// 0 if both inventories are the same, 1 if they differ, 2 if one cannot be read or the output cannot be written.
int RunDiff(const Options& options);

/// 0 if nothing deserves a look, 1 if something does, 2 if the snapshot or the baseline cannot be used or the output
/// cannot be written.
int RunHealth(const Options& options);

/// 0; 2 if the snapshot cannot be read, or if the file cannot be written, which then keeps its content.
int RunBaseline(const Options& options);

/// 0 if every rule of the policy is kept, 1 if one is broken, 2 if the policy or a snapshot cannot be used or the
/// output cannot be written.
int RunCheck(const Options& options);

/// 0; 1 if the output cannot be written.
int RunHelp(const Options& options);

}  // namespace driverlist
