/// @file
/// How a command ends: what it prints or writes, and its exit code.
#pragma once

#include <functional>
#include <string>

#include "commands/options.h"
#include "terminal/page.h"

namespace driverlist {

/// The exit code if something goes wrong: 2 if 1 already means something else.
int TroubleCode(const Options& options);

/// Writes `sentence` to standard error, as Visible() shows it, and returns `exitCode`.
int Fail(int exitCode, const std::string& sentence);

/// Writes `text` to the place that `options` name and returns `exitCode`; fails if it cannot be written.
int Deliver(const Options& options, const std::string& text, int exitCode);

/// The same for the text that `format` makes for a page: a table on a terminal is as wide as the terminal, and coloured
/// if the terminal and the user allow it; anything else has neither width nor colours.
int Deliver(const Options& options, const std::function<std::string(const Page&)>& format, int exitCode);

/// Whether a progress line may be shown: the user asked neither for --quiet nor for a log.
bool WantsProgress(const Options& options);

}  // namespace driverlist
