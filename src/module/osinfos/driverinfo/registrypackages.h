/// @file
/// Chipset packages, which leave nothing but a version value in the registry.
#pragma once

#include <vector>

#include "driverinfo.h"

namespace Orvane {

/// Gives four AMD platform components that have no driver their fixed names, and the file version "N/A": of each, the
/// first no-driver record of `drivers`. Logs each at level 3.
void ApplyAmdComponentIdentities(std::vector<DriverData>& drivers);

/// Appends a record for Intel's chipset package when its installer registered a version: "Version" under
/// HKEY_LOCAL_MACHINE\SOFTWARE\Intel\InfInst. True when it did. Logs a key that cannot be opened at level 1. The key
/// stays open.
bool DetectIntelChipset(std::vector<DriverData>& drivers);

/// The same for AMD's chipset package: "ProductVersion" under SOFTWARE\WOW6432Node\AMD\AMD_Chipset_Drivers. Calls
/// ApplyAmdComponentIdentities() first. Logs a key that cannot be opened or read at level 1, success at level 4.
bool DetectAmdChipset(std::vector<DriverData>& drivers);

/// The same for AMD's plug-in driver for EPYC SP3: "ProductVersion" under the key "AMD EPYC SP3 PSHED Plug-in Driver"
/// beside that one. Logs as DetectAmdChipset().
bool DetectAmdPshedPlugin(std::vector<DriverData>& drivers);

}  // namespace Orvane
