#include "driverinfoImp.h"

#include <utility>

#include "uniquedrivers.h"

namespace Orvane {

int DriverInfoImp::ListAllDrivers(std::vector<DriverData>& drivers) {
  std::vector<DriverData> devices;
  ListDeviceDrivers(devices);
  devices.shrink_to_fit();
  ListRegisteredDrivers(drivers);
  ScanOemInfCatalogue(drivers);
  MergeDevices(std::move(devices), drivers);
  return 0;
}

}  // namespace Orvane
