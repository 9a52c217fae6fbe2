// Takes the library's log into the program's own hands: shows what went wrong, counts the rest.
#include <driverinfo.h>
#include <log.h>

#include <iostream>

int main() {
  int others = 0;
  Orvane::LogToFunction([&others](int level, const char*, int, const std::string& text) {
    if (level == 1) std::cout << "error: " << text << "\n";
    if (level == 2) std::cout << "warning: " << text << "\n";
    if (level > 2) ++others;
  });

  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);

  // The function uses a variable that ends here.
  Orvane::LogToNothing();
  std::cout << drivers.size() << " drivers, " << others << " other lines\n";
}
