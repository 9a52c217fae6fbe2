#include "servicedrivers.h"

#include <algorithm>
#include <array>
#include <utility>

#include "loglines.h"
#include "packagefiles.h"
#include "platform/handles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"
#include "registrypackages.h"
#include "wow64redirection.h"

namespace Orvane {
namespace {

/// One driver service, as the service control manager enumerates it.
struct DriverService {
  std::string name;
  DWORD state;
};

/// The entries in `buffer`; the platform says that there are `count`. Entries come before their texts, so they end
/// where the first text begins, and an entry without a name does not count.
std::vector<DriverService> Entries(const std::vector<char>& buffer, DWORD count) {
  const auto* const entries = reinterpret_cast<const ENUM_SERVICE_STATUSA*>(buffer.data());
  std::vector<DriverService> services;
  std::size_t end = buffer.size();
  for (std::size_t i = 0; i < count && (i + 1) * sizeof(*entries) <= end; ++i) {
    const char* const name = entries[i].lpServiceName;
    if (name == nullptr) break;
    services.push_back({TextWithin(name, buffer.data(), buffer.size()), entries[i].ServiceStatus.dwCurrentState});
    for (const char* const text : {name, static_cast<const char*>(entries[i].lpDisplayName)}) {
      const auto bytes = BytesFrom(text, buffer.data(), buffer.size());
      if (bytes) end = std::min(end, buffer.size() - *bytes);
    }
  }
  return services;
}

/// The driver services of the machine; empty if the service control manager cannot be queried.
std::vector<DriverService> EnumerateDriverServices(SC_HANDLE manager) {
  if (manager == nullptr) return {};
  DWORD size = 0;
  DWORD count = 0;
  DWORD resume = 0;
  // This call fails because it has no room, and reports how much room it needs.
  EnumServicesStatusA(manager, SERVICE_DRIVER, SERVICE_STATE_ALL, nullptr, 0, &size, &count, &resume);
  std::vector<char> buffer(size);
  count = 0;
  // Only once: a driver registered between the two calls is left to the next process.
  DWORD needed = 0;
  if (!EnumServicesStatusA(manager, SERVICE_DRIVER, SERVICE_STATE_ALL,
                           reinterpret_cast<ENUM_SERVICE_STATUSA*>(buffer.data()), size, &needed, &count, &resume) &&
      GetLastError() != ERROR_MORE_DATA) {
    return {};
  }
  return Entries(buffer, count);
}

/// The part of a service's configuration that the listing needs.
struct ServiceConfig {
  DWORD startType = 0;
  std::string imagePath;
};

/// If the configuration cannot be read, logs the error and returns false.
bool QueryConfig(SC_HANDLE service, ServiceConfig& config) {
  alignas(QUERY_SERVICE_CONFIGA) std::array<char, 4096> buffer{};
  auto* const queried = reinterpret_cast<QUERY_SERVICE_CONFIGA*>(buffer.data());
  DWORD needed = 0;
  if (!QueryServiceConfigA(service, queried, static_cast<DWORD>(buffer.size()), &needed)) {
    const std::string error = GetLastErrorText();
    ORVANE_LOG(2) << error;
    return false;
  }
  config.startType = queried->dwStartType;
  config.imagePath = TextWithin(queried->lpBinaryPathName, buffer.data(), buffer.size());
  return true;
}

/// The image path in the registry key named `stem`, with environment variables expanded; empty if there is no path. The
/// key is named after the image file: for a service with a different name it belongs to another service or does not
/// exist.
std::string RegisteredImagePath(const std::string& stem) {
  HKEY opened = nullptr;
  // Most keys exist; if this one does not, the query below fails and the path is empty.
  RegOpenKeyExA(HKEY_LOCAL_MACHINE, ("System\\CurrentControlSet\\Services\\" + stem).c_str(), 0, KEY_QUERY_VALUE,
                &opened);
  // The library never closes a registry key. A listing that found something is cached, so a process opens each key only
  // once.
  KeepOpen(RegKey(opened));

  std::array<char, 1024> value{};
  DWORD size = static_cast<DWORD>(value.size());
  DWORD type = REG_EXPAND_SZ;
  RegQueryValueExA(opened, "ImagePath", nullptr, &type, reinterpret_cast<BYTE*>(value.data()), &size);
  std::string path = BoundedText(value.data(), value.size());
  if (path.find('%') == std::string::npos) return path;

  std::array<char, 1024> expanded{};
  // If this fails, the path is empty.
  ExpandEnvironmentStringsA(path.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  return BoundedText(expanded.data(), expanded.size());
}

/// The version resource of the image at `path`; missing texts are read once more without file-system redirection.
SysFileInfo ReadVersions(const std::string& path) {
  SysFileInfo info;
  PackageFiles::GetDriveInfoFromSysFile(path, info);
  if (!info.file_version.empty() && !info.description.empty() && !info.company.empty()) return info;

  const RedirectionOff redirectionOff;
  if (!redirectionOff) return info;
  SysFileInfo second;
  PackageFiles::GetDriveInfoFromSysFile(path, second);
  if (info.file_version.empty()) {
    info.file_version = second.file_version;
    info.product_version = second.product_version;
  }
  if (info.description.empty()) info.description = second.description;
  if (info.company.empty()) info.company = second.company;
  return info;
}

std::string SizeInKiB(const WIN32_FIND_DATAA& file) {
  return std::to_string((static_cast<unsigned long long>(file.nFileSizeHigh) << 22) | (file.nFileSizeLow >> 10));
}

/// Appends the driver of `service` to `drivers` and to `cache`, or logs why there is nothing to append.
void AppendDriver(SC_HANDLE manager, const DriverService& service, std::vector<DriverData>& drivers,
                  std::vector<DriverData>& cache) {
  const ServiceHandle opened(OpenServiceA(manager, service.name.c_str(), SERVICE_QUERY_CONFIG));
  if (!opened) {
    const std::string error = GetLastErrorText();
    ORVANE_LOG(2) << error;
    return;
  }
  ServiceConfig config;
  if (!QueryConfig(opened.get(), config)) return;

  const std::string image = GetImageFileName(config.imagePath.c_str(), service.name.c_str());
  const std::string stem = image.substr(0, image.rfind('.'));
  std::string path = RegisteredImagePath(stem);
  WIN32_FIND_DATAA file{};
  FindHandle found(FindDriverFile(path, &file));
  if (!found) {
    path = "\\SystemRoot\\system32\\drivers\\" + stem + ".sys";
    found.reset(FindDriverFile(path, &file));
  }
  if (!found) {
    ORVANE_LOG(4) << "can not find bpname= " << path;
    return;
  }

  DriverData driver;
  driver.size = SizeInKiB(file);
  driver.date = PackageFiles::FileTimeToText(file.ftCreationTime);
  SysFileInfo versions = ReadVersions(path);
  found.reset();
  driver.name = ImageRecordName(path);
  driver.description = std::move(versions.description);
  driver.provider = std::move(versions.company);
  driver.path = std::move(path);
  driver.file_version = versions.file_version.substr(0, versions.file_version.find(' '));
  driver.state = ServiceStateName(service.state);
  driver.start_type = ServiceStartTypeName(config.startType);
  driver.product_version = std::move(versions.product_version);
  ORVANE_LOG(4) << loglines::DriverName << driver.name << loglines::DriverVersion << driver.file_version;
  drivers.push_back(driver);
  cache.push_back(std::move(driver));
}

}  // namespace

int ServiceDrivers::ListRegisteredDrivers(std::vector<DriverData>& drivers) {
  static std::vector<DriverData> cache;
  ORVANE_LOG(4) << loglines::ServicesBegin;
  if (!cache.empty()) {
    ORVANE_LOG(4) << "Get data from cache.";
    drivers.insert(drivers.end(), cache.begin(), cache.end());
    return 0;
  }
  const ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
  for (const DriverService& service : EnumerateDriverServices(manager.get())) {
    AppendDriver(manager.get(), service, drivers, cache);
  }
  // It does not grow any more and lives as long as the process.
  cache.shrink_to_fit();
  DetectIntelChipset(drivers);
  DetectAmdChipset(drivers);
  DetectAmdPshedPlugin(drivers);
  return 0;
}

}  // namespace Orvane
