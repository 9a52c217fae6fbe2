#include "versions.h"

#include "driverinfo.h"

namespace driverlist {

bool IsOlder(const std::string& a, const std::string& b) {
  Orvane::DriverData driverA;
  Orvane::DriverData driverB;
  driverA.file_version = a;
  driverB.file_version = b;
  return driverA < driverB;
}

bool IsKnownVersion(const std::string& version) { return !version.empty() && version != "N/A"; }

}  // namespace driverlist
