#include "inventory.h"

#include "context.h"
#include "unicode.h"

namespace driverlist {
namespace {

using Orvane::DriverData;

std::vector<DriverData> Listed(Orvane::DriverInfoSetType mode) {
  Orvane::DriverInfo info;
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, mode);
  return drivers;
}

/// Services have the path of their image; packages have none.
bool HasPath(const DriverData& driver) { return !driver.path.empty(); }

}  // namespace

std::string FoundByName(FoundBy foundBy) {
  switch (foundBy) {
    case FoundBy::Device:
      return "device";
    case FoundBy::Service:
      return "service";
    case FoundBy::Package:
      break;
  }
  return "package";
}

Inventory LiveInventory() {
  Inventory inventory = {HostName(), WindowsVersion(), ToolVersion(), UtcNow(), {}};
  const auto add = [&inventory](FoundBy foundBy, const DriverData& driver) {
    inventory.records.push_back({foundBy, InUtf8(driver)});
  };
  for (const DriverData& driver : Listed(Orvane::ByDevice)) add(FoundBy::Device, driver);
  for (const DriverData& driver : Listed(Orvane::Registered)) {
    if (HasPath(driver)) add(FoundBy::Service, driver);
  }
  for (const DriverData& driver : Listed(Orvane::All)) {
    if (driver.found_by_device == 0 && !HasPath(driver)) add(FoundBy::Package, driver);
  }
  return inventory;
}

DriverData InUtf8(const DriverData& driver) {
  DriverData converted = driver;
  for (std::string DriverData::*const text :
       {&DriverData::name, &DriverData::description, &DriverData::provider, &DriverData::path,
        &DriverData::file_version, &DriverData::state, &DriverData::start_type, &DriverData::date, &DriverData::size,
        &DriverData::product_version, &DriverData::reserved1, &DriverData::reserved2}) {
    converted.*text = Utf8FromAnsi(converted.*text);
  }
  for (std::string& text : converted.reserved_list) text = Utf8FromAnsi(text);
  return converted;
}

}  // namespace driverlist
