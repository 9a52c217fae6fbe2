/// @file
/// Drivers of present devices: names that bind a driver to a device, platform components with fixed names, and the chipset
/// packages that installers leave in the registry.
#pragma once

#include <string>
#include <vector>

#include "driverinfo.h"
#include "drivernames.h"

namespace Orvane {

struct PciDeviceRecord;

/// The device listing.
struct DeviceDiscovery {
  /// The listing behind DriverInfoSetType::ByDevice. Always returns 0.
  ///
  /// Appends what ResolveDeviceDrivers() finds for the devices that are present, marks all records of `drivers` as found by a
  /// device, sorts them, keeps one per name and puts the result into the process-wide cache. While the cache holds anything,
  /// replaces `drivers` by a copy of it instead.
  static int ListDeviceDrivers(std::vector<DriverData>& drivers);

  /// Appends, for each of `devices`, every record of its driver package twice, under its own name and under that of
  /// DeviceRecordName(), or one no-driver record; then the chipset packages. Logs devices and records at level 3.
  static void ResolveDeviceDrivers(const std::vector<PciDeviceRecord>& devices, std::vector<DriverData>& drivers);

  /// The function of this name in drivernames.h.
  static std::string DriverBaseName(const std::string& name);
};

/// Gives four AMD platform components that have no driver their fixed names, and the file version "N/A": of each, the first
/// no-driver record of `drivers`. Logs each at level 3.
void ApplyAmdComponentIdentities(std::vector<DriverData>& drivers);

/// Appends a record for Intel's chipset package when its installer registered a version: "Version" under
/// HKEY_LOCAL_MACHINE\SOFTWARE\Intel\InfInst. True when it did. Logs a key that cannot be opened at level 1. The key stays
/// open.
bool DetectIntelChipset(std::vector<DriverData>& drivers);

/// The same for AMD's chipset package: "ProductVersion" under SOFTWARE\WOW6432Node\AMD\AMD_Chipset_Drivers. Calls ApplyAmdComponentIdentities() first. Logs a key that cannot be opened or read at level 1,
/// success at level 4.
bool DetectAmdChipset(std::vector<DriverData>& drivers);

/// The same for AMD's plug-in driver for EPYC SP3: "ProductVersion" under the key "AMD EPYC SP3 PSHED Plug-in Driver" beside
/// that one. Logs as DetectAmdChipset().
bool DetectAmdPshedPlugin(std::vector<DriverData>& drivers);

}  // namespace Orvane
