/// @file
/// All that is known of the drivers of a machine at one time.
#pragma once

#include <string>
#include <vector>

#include "driverinfo.h"

namespace driverlist {

/// Which listing found a driver.
enum class FoundBy { Device, Service, Package };

/// "device", "service" or "package".
std::string FoundByName(FoundBy foundBy);

/// Unlike the library's, the texts of `driver` are UTF-8: machines differ in their code pages, and inventories travel.
struct InventoryRecord {
  FoundBy foundBy = FoundBy::Device;
  Orvane::DriverData driver;
};

/// Texts are UTF-8.
struct Inventory {
  std::string host;
  /// Such as "10.0.22621".
  std::string windows;
  /// Version of driverlist.
  std::string tool;
  /// UTC, ISO 8601: "2024-05-06T07:08:09Z".
  std::string time;
  std::vector<InventoryRecord> records;
};

/// This machine now. The devices' and the services' listings stand side by side, since the merged listing keeps only one of
/// two that have the same name, and with it neither state nor path of a service that drives a device. Chipset packages count as
/// found by a device. OEM packages are those records of the merged listing that come from neither.
Inventory LiveInventory();

/// `driver` with its texts turned from the ANSI code page to UTF-8.
Orvane::DriverData InUtf8(const Orvane::DriverData& driver);

}  // namespace driverlist
