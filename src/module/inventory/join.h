/// @file
/// Makes records from the listings of the library and the facts from Windows. Pure: calls neither of them.
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

/// The texts in the version resource of an image.
struct ImageTexts {
  std::string description;
  std::string company;
  std::string file_version;
  std::string product_version;
};

/// All facts about one machine.
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
/// file name alone, so it may list another file of that name or no file; then `readImage` reads the image at the path
/// of the service. A name under which only the library lists a service goes to the service for which it was listed. A
/// device gets every name that can be built from its identity and the files of its package and that the library lists.
Records Join(const Facts& facts, const std::function<ImageTexts(const std::string& path)>& readImage);

}  // namespace inventory
