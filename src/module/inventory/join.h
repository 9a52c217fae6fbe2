/// @file
/// Makes records of what the listing library lists and of what Windows says. Pure: asks nobody.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "inventory/devices.h"
#include "inventory/listing.h"
#include "inventory/packages.h"
#include "inventory/record.h"
#include "inventory/services.h"

namespace inventory {

/// What the version resource of an image says.
struct ImageTexts {
  std::string description;
  std::string company;
  std::string file_version;
  std::string product_version;
};

/// All that is known of one machine.
struct Facts {
  /// The library's listings of devices and of services.
  std::vector<ListedDriver> listedDevices;
  std::vector<ListedDriver> listedServices;
  std::vector<ServiceFacts> services;
  std::vector<DeviceFacts> devices;
  std::vector<DeviceNode> nodes;
  std::vector<PackageFacts> packages;
};

/// One record for each service, device and package of `facts`, and for each chipset package that the library lists;
/// each kind in the order of KeyOf().
///
/// A service takes the texts of its image from the listed service with the same path. The library looks for images by
/// their file names alone, so it may list another file of that name, or none; then `readImage` is asked for the image
/// at the service's own path. A name under which only the library lists a service goes to the service that it was
/// listed for. A device takes its names from the listed devices: those that its identity and the files of its package
/// make, as far as the library lists them.
Records Join(const Facts& facts, const std::function<ImageTexts(const std::string& path)>& readImage);

}  // namespace inventory
