/// @file
/// Chipset packages, which leave only a version value in the registry.
#pragma once

#include <vector>

#include "driverinfo.h"

namespace Orvane {

/// Gives four AMD platform components that have no driver their fixed names and the file version "N/A". For each
/// component, only its first no-driver record in `drivers` is changed. Logs each change at level 3.
void ApplyAmdComponentIdentities(std::vector<DriverData>& drivers);

/// Appends a record for Intel's chipset package if its installer registered a version: "Version" under
/// HKEY_LOCAL_MACHINE\SOFTWARE\Intel\InfInst. Returns whether it did. Logs a key that cannot be opened at level 1. The
/// key stays open.
bool DetectIntelChipset(std::vector<DriverData>& drivers);

/// The same for AMD's chipset package: "ProductVersion" under SOFTWARE\WOW6432Node\AMD\AMD_Chipset_Drivers. Calls
/// ApplyAmdComponentIdentities() first. Logs a key that cannot be opened or read at level 1, success at level 4.
bool DetectAmdChipset(std::vector<DriverData>& drivers);

/// The same for AMD's plug-in driver for EPYC SP3: "ProductVersion" under the key "AMD EPYC SP3 PSHED Plug-in Driver"
/// next to the key of the chipset package. Logs like DetectAmdChipset().
bool DetectAmdPshedPlugin(std::vector<DriverData>& drivers);

}  // namespace Orvane
