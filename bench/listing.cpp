#include "listing.h"

#include "driverinfo.h"

namespace {

std::vector<Orvane::DriverData> drivers;

}  // namespace

extern "C" __declspec(dllexport) void SetRecords(const std::vector<bench::Record>& records) {
  drivers.assign(records.size(), Orvane::DriverData());
  for (std::size_t i = 0; i < records.size(); ++i) {
    drivers[i].name = records[i].name;
    drivers[i].description = records[i].description;
    drivers[i].provider = records[i].provider;
    drivers[i].file_version = records[i].fileVersion;
  }
}

extern "C" __declspec(dllexport) void ListDrivers(int mode) {
  Orvane::DriverInfo info;
  info.list_drivers(drivers, static_cast<Orvane::DriverInfoSetType>(mode));
}

extern "C" __declspec(dllexport) void TakeRecords(std::vector<bench::Record>& records) {
  records.clear();
  for (const Orvane::DriverData& d : drivers) {
    records.push_back({d.name, d.description, d.provider, d.path, d.file_version, d.state, d.start_type, d.date, d.size,
                       d.product_version});
  }
  drivers.clear();
}
