/// @file
/// The drivers of the present devices, each under its own name and under a name that binds it to its device.
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
  /// found by a device, sorts them, keeps one per name and copies the result into the process-wide cache. Once the
  /// cache holds anything, replaces `drivers` with a copy of it instead.
  static int ListDeviceDrivers(std::vector<DriverData>& drivers);

  /// Appends, for each of `devices`, every record of its driver package twice, under its own name and under the name
  /// that DeviceRecordName() gives it, or, if the device has no driver, one no-driver record. Then appends the chipset
  /// packages. Logs devices and records at level 3.
  static void ResolveDeviceDrivers(const std::vector<PciDeviceRecord>& devices, std::vector<DriverData>& drivers);

  /// Calls the function of the same name in drivernames.h.
  static std::string DriverBaseName(const std::string& name);
};

}  // namespace Orvane
