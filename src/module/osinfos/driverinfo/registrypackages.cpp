#include "registrypackages.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <utility>

#include "drivernames.h"
#include "platform/handles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"

namespace Orvane {
namespace {

/// A driver package that leaves only a version value in the registry.
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
    "SOFTWARE\\Intel\\InfInst\\", "Version", ChipsetPackageNames[0], "Intel chipset Driver", "Intel", false, nullptr};
constexpr RegistryPackage AmdChipset = {"SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\",
                                        "ProductVersion",
                                        ChipsetPackageNames[1],
                                        "Amd chipset Driver",
                                        "Amd",
                                        true,
                                        "success to get amd chipset."};
constexpr RegistryPackage AmdPshedPlugin = {"SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\",
                                            "ProductVersion",
                                            ChipsetPackageNames[2],
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
  // The library never closes a registry key. Listings that found something are cached, so a process opens each key only
  // once or twice.
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

}  // namespace

void ApplyAmdComponentIdentities(std::vector<DriverData>& drivers) {
  for (const ComponentIdentity& component : AmdComponentIdentities) {
    const auto driver = std::find_if(drivers.begin(), drivers.end(),
                                     [&](const DriverData& d) { return d.name == component.noDriverName; });
    if (driver == drivers.end()) continue;
    ORVANE_LOG(3) << "find " << component.noDriverName;
    driver->name = component.name;
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
