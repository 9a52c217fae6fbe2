/// @file
/// All that is known of the drivers of one machine at one time: every service, every device, every package is one
/// record.
#pragma once

#include <string>

#include "inventory/head.h"
#include "inventory/record.h"

namespace inventory {

struct Inventory {
  Head head;
  /// Services, devices, packages, chipset packages; each kind in the order of KeyOf().
  Records records;
  /// That of the documents; 1 for a snapshot whose records have only what schema1.h says.
  unsigned schema = 2;
};

/// Asks this machine: the listing library, the device inventory, and Windows for what they do not say. `hostId` as
/// ThisMachine() takes it. What cannot be read is left out, with a line in the log; one call at a time in a process,
/// since the library allows one listing at a time. Devices and services are those of the first call in the process.
Inventory Collect(const std::string& hostId);

}  // namespace inventory
