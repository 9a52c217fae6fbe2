#include "devicediscovery.h"

#include <utility>

#include "loglines.h"
#include "packagefiles.h"
#include "pciinfo.h"
#include "platform/logline.h"
#include "uniquedrivers.h"

namespace Orvane {
namespace {

/// Appends each record of the device's driver package unchanged and, unless its name is only an extension, once more
/// with a name that binds it to the device.
void AppendPackageRecords(const PciDeviceRecord& device, std::vector<DriverData>& drivers) {
  std::vector<DriverData> records;
  PackageFiles::ReadInfPackage(device.inf_name, records);
  for (DriverData& record : records) {
    ORVANE_LOG(3) << record.name << "|" << record.file_version << "|" << record.product_version;
    drivers.push_back(record);
    const std::string base = DeviceDiscovery::DriverBaseName(record.name);
    if (base.empty()) continue;
    record.name = DeviceRecordName(device, base);
    drivers.push_back(std::move(record));
  }
}

void AppendNoDriverRecord(const PciDeviceRecord& device, std::vector<DriverData>& drivers) {
  ORVANE_LOG(3) << "Driver name is empty, this device isn't installed a driver.";
  DriverData driver;
  driver.file_version = "N/A";
  driver.provider = device.provider;
  driver.description = device.description;
  driver.name = DeviceRecordName(device, std::string());
  drivers.push_back(std::move(driver));
}

}  // namespace

int DeviceDiscovery::ListDeviceDrivers(std::vector<DriverData>& drivers) {
  static std::vector<DriverData> cache;
  ORVANE_LOG(4) << loglines::DevicesBegin;
  if (!cache.empty()) {
    ORVANE_LOG(4) << "Get data from cache.";
    drivers = cache;
    return 0;
  }
  std::vector<PciDeviceRecord> devices;
  GetPciInfo(devices);
  ResolveDeviceDrivers(devices, drivers);
  for (DriverData& driver : drivers) driver.found_by_device = 1;
  SortAndRemoveDuplicates(drivers);
  cache = drivers;
  return 0;
}

void DeviceDiscovery::ResolveDeviceDrivers(const std::vector<PciDeviceRecord>& devices,
                                           std::vector<DriverData>& drivers) {
  for (const PciDeviceRecord& device : devices) {
    ORVANE_LOG(3) << DeviceIdentity(device) << loglines::DeviceInf << device.inf_name;
    if (device.inf_name.empty()) {
      AppendNoDriverRecord(device, drivers);
    } else {
      AppendPackageRecords(device, drivers);
    }
  }
  DetectIntelChipset(drivers);
  DetectAmdChipset(drivers);
  DetectAmdPshedPlugin(drivers);
}

std::string DeviceDiscovery::DriverBaseName(const std::string& name) { return Orvane::DriverBaseName(name); }

}  // namespace Orvane
