#include "servicedrivers.h"

#include <algorithm>
#include <array>
#include <utility>

#include "devicediscovery.h"
#include "handles.h"
#include "logline.h"
#include "packagefiles.h"
#include "platformtext.h"

namespace Orvane {
namespace {

const std::array<std::string, 8> ServiceStateNames = {"Reserved", "Stopped",          "Start Pending", "Stop Pending",
                                                      "Running",  "Continue Pending", "Pause Pending", "Paused"};
const std::array<std::string, 5> ServiceStartTypeNames = {"Boot Start", "System Start", "Automatic", "Manual",
                                                          "Disabled"};

template <std::size_t Size>
std::string NameAt(const std::array<std::string, Size>& names, DWORD index) {
  return index < Size ? names[index] : std::string();
}

/// What every revert call gets, whatever old value the disable call handed out. It is never set: null stands for redirection
/// switched on, the state in which threads come to this library.
void* const RedirectionValue = nullptr;

/// Switches WoW64 file-system redirection off for the calling thread and this scope. The functions are looked up by name at
/// every use: not every Windows has them.
class RedirectionOff {
 public:
  RedirectionOff() : m_kernel(LoadLibraryExA("kernel32.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (m_kernel == nullptr) return;
    void* oldValue = nullptr;
    const auto disable = Function<BOOL(WINAPI*)(void**)>("Wow64DisableWow64FsRedirection");
    m_isOff = disable != nullptr && disable(&oldValue) == TRUE;
  }
  RedirectionOff(const RedirectionOff&) = delete;
  RedirectionOff& operator=(const RedirectionOff&) = delete;
  // Reverts also when nothing was switched off.
  ~RedirectionOff() {
    if (const auto revert = Function<BOOL(WINAPI*)(void*)>("Wow64RevertWow64FsRedirection")) revert(RedirectionValue);
    FreeLibrary(m_kernel);
  }

  /// False where redirection could not be switched off, as in a 64-bit process, which has none.
  explicit operator bool() const { return m_isOff; }

 private:
  template <typename Pointer>
  Pointer Function(const char* name) const {
    return reinterpret_cast<Pointer>(reinterpret_cast<void*>(GetProcAddress(m_kernel, name)));
  }

  HMODULE m_kernel;
  bool m_isOff = false;
};

/// One driver service, as the service control manager enumerates it.
struct DriverService {
  std::string name;
  DWORD state;
};

/// The entries that `buffer` holds, `count` by the platform's word. Entries stand in front of their texts, so they end where
/// the first text begins, and one without a name is none.
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

/// The driver services of the machine; none when the service control manager cannot be asked.
std::vector<DriverService> EnumerateDriverServices(SC_HANDLE manager) {
  if (manager == nullptr) return {};
  DWORD size = 0;
  DWORD count = 0;
  DWORD resume = 0;
  EnumServicesStatusA(manager, SERVICE_DRIVER, SERVICE_STATE_ALL, nullptr, 0, &size, &count, &resume);
  std::vector<char> buffer(size);
  count = 0;
  // Once, without asking for more: a driver registered between the two calls is left to the next process.
  DWORD needed = 0;
  if (!EnumServicesStatusA(manager, SERVICE_DRIVER, SERVICE_STATE_ALL,
                           reinterpret_cast<ENUM_SERVICE_STATUSA*>(buffer.data()), size, &needed, &count, &resume) &&
      GetLastError() != ERROR_MORE_DATA) {
    return {};
  }
  return Entries(buffer, count);
}

/// What the listing needs of a service's configuration.
struct ServiceConfig {
  DWORD startType = 0;
  std::string imagePath;
};

/// False, with the error logged, when the configuration cannot be read.
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

/// The image path in the registry key that carries the name `stem`, with environment variables expanded; empty when there is
/// none. The key is named after the image file: for a service of another name it is another service's key, or none.
std::string RegisteredImagePath(const std::string& stem) {
  HKEY opened = nullptr;
  RegOpenKeyExA(HKEY_LOCAL_MACHINE, ("System\\CurrentControlSet\\Services\\" + stem).c_str(), 0, KEY_QUERY_VALUE,
                &opened);
  // The library closes no registry key: a listing that found something is cached, so a process opens each key once.
  KeepOpen(RegKey(opened));

  std::array<char, 1024> value{};
  DWORD size = static_cast<DWORD>(value.size());
  DWORD type = REG_EXPAND_SZ;
  RegQueryValueExA(opened, "ImagePath", nullptr, &type, reinterpret_cast<BYTE*>(value.data()), &size);
  std::string path = BoundedText(value.data(), value.size());
  if (path.find('%') == std::string::npos) return path;

  std::array<char, 1024> expanded{};
  ExpandEnvironmentStringsA(path.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  return BoundedText(expanded.data(), expanded.size());
}

/// The version resource of the image at `path`; what is missing of it is read once more without file-system redirection.
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
  ORVANE_LOG(4) << "DRIVERINFO.name=" << driver.name << " DRIVERINFO.file_version=" << driver.file_version;
  drivers.push_back(driver);
  cache.push_back(std::move(driver));
}

FindHandle FindCandidate(const std::string& candidate, WIN32_FIND_DATAA* findData) {
  FindHandle found(FindFirstFileA(candidate.c_str(), findData));
  if (found) return found;
  const RedirectionOff redirectionOff;
  if (redirectionOff) found.reset(FindFirstFileA(candidate.c_str(), findData));
  return found;
}

}  // namespace

int ServiceDrivers::ListRegisteredDrivers(std::vector<DriverData>& drivers) {
  static std::vector<DriverData> cache;
  ORVANE_LOG(4) << "Start to list registered driver files.";
  if (!cache.empty()) {
    ORVANE_LOG(4) << "Get data from cache.";
    drivers.insert(drivers.end(), cache.begin(), cache.end());
    return 0;
  }
  const ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
  for (const DriverService& service : EnumerateDriverServices(manager.get())) {
    AppendDriver(manager.get(), service, drivers, cache);
  }
  // It grows no more and lives as long as the process.
  cache.shrink_to_fit();
  DetectIntelChipset(drivers);
  DetectAmdChipset(drivers);
  DetectAmdPshedPlugin(drivers);
  return 0;
}

std::string ServiceStateName(DWORD state) { return NameAt(ServiceStateNames, state); }

std::string ServiceStartTypeName(DWORD startType) { return NameAt(ServiceStartTypeNames, startType); }

HANDLE FindDriverFile(std::string& path, WIN32_FIND_DATAA* findData) {
  std::array<char, MAX_PATH> systemDirectory{};
  std::array<char, MAX_PATH> windowsDirectory{};
  GetSystemDirectoryA(systemDirectory.data(), MAX_PATH);
  GetWindowsDirectoryA(windowsDirectory.data(), MAX_PATH);
  const std::string system = BoundedText(systemDirectory.data(), systemDirectory.size());

  std::string candidate = FirstImagePlace(path, system);
  FindHandle found = FindCandidate(candidate, findData);
  if (!found) {
    candidate = system + "\\" + path;
    found = FindCandidate(candidate, findData);
  }
  if (!found) {
    // When the Windows directory is not told, the system directory is still there.
    GetWindowsDirectoryA(systemDirectory.data(), MAX_PATH);
    candidate = BoundedText(systemDirectory.data(), systemDirectory.size()) + "\\" + path;
    found = FindCandidate(candidate, findData);
  }
  if (!found) return INVALID_HANDLE_VALUE;
  path = candidate;
  return found.release();
}

std::string GetLastErrorText() {
  const DWORD error = GetLastError();
  char* text = nullptr;
  FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
                 error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&text), 0, nullptr);
  const LocalMemory owner(text);
  return owner ? std::string(text) : std::string();
}

}  // namespace Orvane
