/// @file
/// Completion of the command line in PowerShell.
#pragma once

#include <string>

namespace driverlist {

/// A PowerShell script that registers it, made from the option table.
std::string CompletionScript();

}  // namespace driverlist
