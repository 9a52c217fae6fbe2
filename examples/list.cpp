#include <driverinfo.h>

#include <iostream>

int main() {
  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  info.list_drivers(drivers, Orvane::All);
  for (const Orvane::DriverData& driver : drivers) {
    std::cout << driver.name << " " << driver.file_version << " (" << driver.state << "): " << driver.path << "\n";
  }
}
