/// @file
/// The platform under one listing of a fresh library.
#pragma once

#include <vector>

#include "faults.h"
#include "fileplatform.h"
#include "remembered.h"
#include "serviceplatform.h"
#include "setupplatform.h"

namespace sweeps {

/// While it lives, the calls of the library, which is loaded, are numbered, and one of them fails.
struct Platform {
  Platform(Faults& faults, Remembered& answers)
      : remembered(answers), services(faults, answers), setup(faults), files(faults, answers) {}
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;

  Remembered& remembered;
  /// Whether the machine has any devices.
  bool hasDevices = true;
  /// Whether the inventory is asked every time.
  bool asksInventory = false;
  ServicePlatform services;
  SetupPlatform setup;
  FilePlatform files;

  HOOK(inventory, Library(), GetPciInfo, [this](std::vector<Orvane::PciDeviceRecord>& devices) {
    if (!hasDevices) return;
    if (asksInventory) return inventory.Real(devices);
    devices = remembered.Devices([this](std::vector<Orvane::PciDeviceRecord>& found) { inventory.Real(found); });
  });
};

}  // namespace sweeps
