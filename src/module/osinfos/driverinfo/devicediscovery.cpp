#include "devicediscovery.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <utility>

#include "handles.h"
#include "logline.h"
#include "packagefiles.h"
#include "pciinfo.h"
#include "platformtext.h"
#include "uniquedrivers.h"

namespace Orvane {
namespace {

// Names of platform components that have no driver: the same on every machine that has them.
const std::string AmdGpio = "AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000";
const std::string AmdUart = "AMD-VOKTA_AMDUART_0000-0000-0000-0000";
const std::string AmdI2c = "AMD-VOKTA_AMDI2C_0000-0000-0000-0000";
const std::string AmdDrtm = "AMD-VOKTA_AMDDRTM_0000-0000-0000-0000";

/// A driver package that leaves nothing but a version value in the registry.
struct RegistryPackage {
  /// Path below HKEY_LOCAL_MACHINE, in the 64-bit view.
  const char* key;
  const char* value;
  const char* name;
  const char* description;
  const char* provider;
  bool logsQueryFailure;
  /// Null for a package whose success is not logged.
  const char* successLine;
};

constexpr RegistryPackage IntelChipset = {
    "SOFTWARE\\Intel\\InfInst\\", "Version", "intel_chipset", "Intel chipset Driver", "Intel", false, nullptr};
constexpr RegistryPackage AmdChipset = {"SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\",
                                        "ProductVersion",
                                        "amd_chipset",
                                        "Amd chipset Driver",
                                        "Amd",
                                        true,
                                        "success to get amd chipset."};
constexpr RegistryPackage AmdPshedPlugin = {"SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\",
                                            "ProductVersion",
                                            "amd_ppd",
                                            "Amd EPYC SP3 PSHED Plug-in Driver",
                                            "Amd",
                                            true,
                                            "success to get AMD EPYC SP3 PSHED Plug-in Driver."};

bool DetectRegistryPackage(const RegistryPackage& package, std::vector<DriverData>& drivers) {
  HKEY opened = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, package.key, 0, KEY_READ | KEY_WOW64_64KEY, &opened) != ERROR_SUCCESS) {
    ORVANE_LOG(1) << "Failed to open " << package.key << " in HKEY_LOCAL_MACHINE";
    return false;
  }
  // The library closes no registry key: a listing that found something is cached, so a process opens each key once or twice.
  KeepOpen(RegKey(opened));

  std::array<char, 1024> value{};
  DWORD size = static_cast<DWORD>(value.size());
  DWORD type = REG_SZ;
  const LSTATUS status =
      RegQueryValueExA(opened, package.value, nullptr, &type, reinterpret_cast<BYTE*>(value.data()), &size);
  if (status != ERROR_SUCCESS) {
    if (package.logsQueryFailure) {
      ORVANE_LOG(1) << "Failed to query " << package.key
                    << " in HKEY_LOCAL_MACHINE, retStatus = " << std::to_string(status);
    }
    return false;
  }
  DriverData driver;
  driver.name = package.name;
  driver.description = package.description;
  driver.provider = package.provider;
  driver.file_version = BoundedText(value.data(), value.size());
  drivers.push_back(std::move(driver));
  if (package.successLine != nullptr) ORVANE_LOG(4) << package.successLine;
  return true;
}

/// Appends each record of the device's driver package as it is and, unless its name is all extension, bound to the device.
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
  ORVANE_LOG(4) << "Start list exist device driver files.";
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
    ORVANE_LOG(3) << DeviceIdentity(device) << "|" << device.inf_name;
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

void ApplyAmdComponentIdentities(std::vector<DriverData>& drivers) {
  const std::pair<const char*, const std::string&> identities[] = {{"AMDI-0030-0000-0000_nodriver#", AmdGpio},
                                                                   {"AMDI-0020-0000-0000_nodriver#", AmdUart},
                                                                   {"AMDI-0010-0000-0000_nodriver#", AmdI2c},
                                                                   {"DRTM-0002-0000-0000_nodriver#", AmdDrtm}};
  for (const auto& [name, identity] : identities) {
    const auto driver =
        std::find_if(drivers.begin(), drivers.end(), [name = name](const DriverData& d) { return d.name == name; });
    if (driver == drivers.end()) continue;
    ORVANE_LOG(3) << "find " << name;
    driver->name = identity;
    driver->file_version = "N/A";
  }
}

bool DetectIntelChipset(std::vector<DriverData>& drivers) { return DetectRegistryPackage(IntelChipset, drivers); }

bool DetectAmdChipset(std::vector<DriverData>& drivers) {
  ApplyAmdComponentIdentities(drivers);
  return DetectRegistryPackage(AmdChipset, drivers);
}

bool DetectAmdPshedPlugin(std::vector<DriverData>& drivers) { return DetectRegistryPackage(AmdPshedPlugin, drivers); }

}  // namespace Orvane
