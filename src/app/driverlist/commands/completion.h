/// @file
/// Completion of the command line in PowerShell.
#pragma once

#include <string>

namespace driverlist {

/// A PowerShell script that registers the completion, generated from the option table.
std::string CompletionScript();

}  // namespace driverlist
