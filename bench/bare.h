/// @file
/// The questions that a listing asks of Windows, asked without the library: the same calls with the same arguments in
/// the same order, and the texts of the answers kept. No cache, log, order or merge; what Windows fills is believed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "record.h"

namespace bench::bare {

using Records = std::vector<Record>;

/// One record for each driver service whose image is found, in the order of the service control manager; then the
/// chipset packages.
Records ListServices();

/// One record for each driver file of each device's package, in the order of the devices, or one for a device without a
/// driver; then the chipset packages.
Records ListDevices();

/// One record for each driver file of each OEM package, in the order of the file system.
Records ListOemPackages();

/// Devices, services and OEM packages, one behind the other.
Records ListAll();

/// What the inventory asks of Windows beyond the listings: each service opened once, each device looked at once, each
/// INF opened once. Returns how many answers there were.
std::size_t AskForTheInventory();

/// Appends what the INF at `path` lists.
void ReadPackage(const std::string& path, Records& records);

/// Appends the packages that chipset installers leave in the registry.
void ReadChipsetPackages(Records& records);

}  // namespace bench::bare
