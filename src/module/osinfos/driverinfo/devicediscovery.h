/// @file
/// Drivers of present devices, each under its own name and under one that binds it to its device.
#pragma once

#include <string>
#include <vector>

#include "driverinfo.h"
#include "drivernames.h"
#include "registrypackages.h"

namespace Orvane {

struct PciDeviceRecord;

/// The device listing.
struct DeviceDiscovery {
  /// The listing behind DriverInfoSetType::ByDevice. Always returns 0.
  ///
  /// Appends what ResolveDeviceDrivers() finds for the devices that are present, marks all records of `drivers` as
  /// found by a device, sorts them, keeps one per name and puts the result into the process-wide cache. While the cache
  /// holds anything, replaces `drivers` by a copy of it instead.
  static int ListDeviceDrivers(std::vector<DriverData>& drivers);

  /// Appends, for each of `devices`, every record of its driver package twice, under its own name and under that of
  /// DeviceRecordName(), or one no-driver record; then the chipset packages. Logs devices and records at level 3.
  static void ResolveDeviceDrivers(const std::vector<PciDeviceRecord>& devices, std::vector<DriverData>& drivers);

  /// The function of this name in drivernames.h.
  static std::string DriverBaseName(const std::string& name);
};

}  // namespace Orvane
