// Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document.
#include <driverinventory.hpp>
#include <iostream>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

int main(int argc, char** argv) try {
#ifdef _WIN32
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  const auto inventory = Orvane::DriverInventory::Collect();
  if (argc > 1 && std::string_view(argv[1]) == "json") {
    std::cout << inventory.Json();
    return 0;
  }
  const Orvane::DriverMember kind = "kind", name = "name", version = "version";
  for (const Orvane::DriverRecord record : inventory) {
    std::cout << record.Text(kind) << '\t' << record.Text(name) << '\t' << record.Text(version) << '\n';
  }
} catch (const Orvane::DriverInventoryError& error) {
  std::cerr << "list: " << error.what() << '\n';
  return 1;
}
