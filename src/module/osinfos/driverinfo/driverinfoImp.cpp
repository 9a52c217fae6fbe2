#include "driverinfoImp.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/logline.h"
#include "uniquedrivers.h"

namespace Orvane {
namespace {

/// A record of the other sources, by its position, that has the name of a device record.
struct Shadowed {
  std::size_t device;
  std::size_t driver;
};

/// In the order of the device records, for each of them in the order of `drivers`.
std::vector<Shadowed> FindShadowed(const std::vector<DriverData>& devices, const std::vector<DriverData>& drivers) {
  std::unordered_map<std::string_view, std::size_t> deviceByName;
  for (std::size_t i = 0; i < devices.size(); ++i) deviceByName.emplace(devices[i].name, i);
  std::vector<Shadowed> shadowed;
  for (std::size_t i = 0; i < drivers.size(); ++i) {
    const auto device = deviceByName.find(drivers[i].name);
    if (device != deviceByName.end()) shadowed.push_back({device->second, i});
  }
  std::stable_sort(shadowed.begin(), shadowed.end(),
                   [](const Shadowed& a, const Shadowed& b) { return a.device < b.device; });
  return shadowed;
}

/// Drops the shadowed records, and logs them in their order.
void EraseShadowed(const std::vector<Shadowed>& allShadowed, std::vector<DriverData>& drivers) {
  std::vector<bool> isShadowed(drivers.size());
  for (const Shadowed& shadowed : allShadowed) {
    const DriverData& driver = drivers[shadowed.driver];
    // The size stands where the line says version; readers of the log know it so.
    ORVANE_LOG(3) << driver.name << "; version=" << driver.size << " already found by device.";
    isShadowed[shadowed.driver] = true;
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < drivers.size(); ++i) {
    if (!isShadowed[i]) drivers[kept++] = std::move(drivers[i]);
  }
  drivers.resize(kept);
}

/// Makes room for `size` records. While a vector grows its records have room twice, and one that doubled may have much
/// room left: that is given back first, so that the listing needs little more than its result and the caches do.
void MakeRoom(std::vector<DriverData>& drivers, std::size_t size) {
  if (drivers.capacity() >= size) return;
  drivers.shrink_to_fit();
  drivers.reserve(size);
}

}  // namespace

int DriverInfoImp::ListAllDrivers(std::vector<DriverData>& drivers) {
  std::vector<DriverData> devices;
  ListDeviceDrivers(devices);
  devices.shrink_to_fit();
  ListRegisteredDrivers(drivers);
  ScanOemInfCatalogue(drivers);
  const std::vector<Shadowed> shadowed = FindShadowed(devices, drivers);
  // Room for all of them first: a record is dropped only when nothing can keep that of its device from taking its
  // place.
  MakeRoom(drivers, drivers.size() - shadowed.size() + devices.size());
  EraseShadowed(shadowed, drivers);
  drivers.insert(drivers.end(), std::make_move_iterator(devices.begin()), std::make_move_iterator(devices.end()));
  SortAndRemoveDuplicates(drivers);
  return 0;
}

}  // namespace Orvane
