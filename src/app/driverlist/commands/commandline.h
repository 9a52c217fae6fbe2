/// @file
/// The command line as CLI11 reads it.
#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <memory>

#include "commands/helptext.h"
#include "commands/options.h"

namespace driverlist {

/// All commands with their options. Parsing fills `options`, which must outlive it. Its help is as wide as HelpText
/// says.
std::unique_ptr<CLI::App> MakeCommandLine(Options& options, std::size_t helpWidth);

}  // namespace driverlist
