#include "driverinfoImp.h"

namespace Orvane {

int DriverInfoImp::ListAllDrivers(std::vector<DriverData>&) { return 0; }

}  // namespace Orvane
