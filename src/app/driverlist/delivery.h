/// @file
/// How a command ends: what it prints or writes, and its exit code.
#pragma once

#include <string>

#include "options.h"
#include "table.h"

namespace driverlist {

/// The exit code of `command` when something goes wrong. 1 means "something was found" to those that 2 is told of.
int TroubleCode(Command command);

/// Tells `sentence` on standard error and returns `exitCode`.
int Fail(int exitCode, const std::string& sentence);

/// Writes `text` to where `options` say, and returns `exitCode`; fails when it cannot be written.
int Deliver(const Options& options, const std::string& text, int exitCode);

/// Whether a progress line may show: the user asked neither for quiet nor for a log.
bool WantsProgress(const Options& options);

/// What a table of `options` is written on.
Page PageFor(const Options& options, bool colours);

}  // namespace driverlist
