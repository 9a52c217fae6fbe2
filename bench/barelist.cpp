// What driverlist is measured against: loads the library, lists, and says so in one byte.
#include <cstdio>

#include "driverinfo.h"

int main() {
  std::vector<Orvane::DriverData> drivers;
  Orvane::DriverInfo().list_drivers(drivers, Orvane::All);
  std::putchar(drivers.size() > 300 ? '.' : '?');
  return 0;
}
