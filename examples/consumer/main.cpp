// What the three modules of the package say of the devices of this machine.
#include <driverinfo.h>
#include <log.h>
#include <pciinfo.h>

#include <iostream>

int main() {
  std::vector<Orvane::PciDeviceRecord> devices;
  GetPciInfo(devices);
  std::cout << devices.size() << " devices\n";

  int lines = 0;
  Orvane::LogToFunction([&lines](int, const char*, int, const std::string&) { ++lines; });
  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  info.list_drivers(drivers, Orvane::ByDevice);
  Orvane::LogToNothing();
  std::cout << (lines > 0 ? "with" : "without") << " log\n";

  for (const Orvane::DriverData& driver : drivers) std::cout << driver.name << "\n";
}
