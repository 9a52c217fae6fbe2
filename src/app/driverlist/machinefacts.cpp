#include "machinefacts.h"

#include <windows.h>
// After windows.h.
#include <initguid.h>
// Its keys are defined here, because of the header before.
#include <devpkey.h>
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <utility>

#include "handles.h"
#include "inventory.h"
#include "unicode.h"

namespace driverlist {
namespace {

using Orvane::RegKey;
using Orvane::ServiceHandle;
using DeviceSet = Orvane::UniqueHandle<HDEVINFO, &SetupDiDestroyDeviceInfoList>;
using InfHandle = Orvane::UniqueHandle<HINF, &SetupCloseInfFile>;

// --- The library's listings.

std::vector<Orvane::DriverData> Listed(Orvane::DriverInfoSetType mode) {
  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  info.list_drivers(drivers, mode);
  for (Orvane::DriverData& driver : drivers) driver = InUtf8(driver);
  return drivers;
}

std::vector<Orvane::DriverData> ListedServices() {
  std::vector<Orvane::DriverData> services = Listed(Orvane::Registered);
  services.erase(std::remove_if(services.begin(), services.end(),
                                [](const Orvane::DriverData& driver) { return driver.path.empty(); }),
                 services.end());
  return services;
}

// --- Services.

/// A text that Windows placed in a buffer and ended.
std::wstring Text(const wchar_t* text) { return text != nullptr ? text : std::wstring(); }

std::wstring WindowsDirectory() {
  std::array<wchar_t, MAX_PATH> path{};
  const UINT length = GetSystemWindowsDirectoryW(path.data(), MAX_PATH);
  return length < MAX_PATH ? std::wstring(path.data(), length) : std::wstring();
}

std::vector<std::wstring> DriverServices(SC_HANDLE manager) {
  std::vector<std::wstring> names;
  std::vector<char> buffer(1 << 16);
  DWORD resume = 0;
  for (;;) {
    DWORD needed = 0;
    DWORD count = 0;
    const BOOL isAll = EnumServicesStatusExW(manager, SC_ENUM_PROCESS_INFO, SERVICE_DRIVER, SERVICE_STATE_ALL,
                                             reinterpret_cast<BYTE*>(buffer.data()), static_cast<DWORD>(buffer.size()),
                                             &needed, &count, &resume, nullptr);
    if (!isAll && GetLastError() != ERROR_MORE_DATA) return names;
    const auto* const entries = reinterpret_cast<const ENUM_SERVICE_STATUS_PROCESSW*>(buffer.data());
    for (DWORD i = 0; i < count; ++i) names.push_back(Text(entries[i].lpServiceName));
    if (isAll) return names;
    // An entry that does not fit asks for more; nothing more to ask for, and nothing told, is no way forward.
    if (count == 0 && needed <= buffer.size()) return names;
    buffer.resize(std::max<std::size_t>(buffer.size(), needed));
  }
}

/// False when the configuration cannot be read.
bool ReadConfiguredImage(SC_HANDLE manager, const std::wstring& service, std::wstring& configured) {
  const ServiceHandle opened(OpenServiceW(manager, service.c_str(), SERVICE_QUERY_CONFIG));
  // The largest that there is.
  alignas(QUERY_SERVICE_CONFIGW) std::array<char, 8192> buffer{};
  auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer.data());
  DWORD needed = 0;
  if (!opened || !QueryServiceConfigW(opened.get(), config, static_cast<DWORD>(buffer.size()), &needed)) return false;
  configured = Text(config->lpBinaryPathName);
  return true;
}

bool IsMissing(const std::wstring& path) {
  if (path.empty() || GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return false;
  const DWORD error = GetLastError();
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

std::vector<MissingImage> FindMissingImages() {
  std::vector<MissingImage> missing;
  const std::wstring windows = WindowsDirectory();
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
  if (!manager || windows.empty()) return missing;
  for (const std::wstring& service : DriverServices(manager.get())) {
    std::wstring configured;
    if (!ReadConfiguredImage(manager.get(), service, configured)) continue;
    const std::wstring path = ImagePath(configured, service, windows);
    if (IsMissing(path)) missing.push_back({Utf8FromWide(service), Utf8FromWide(configured), Utf8FromWide(path)});
  }
  return missing;
}

std::wstring Expanded(const std::wstring& text) {
  std::array<wchar_t, 4096> expanded{};
  const DWORD size = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  return size > 0 && size <= expanded.size() ? std::wstring(expanded.data()) : text;
}

bool BeginsWith(const std::wstring& text, const std::wstring& prefix) {
  return CompareStringOrdinal(text.c_str(), static_cast<int>(std::min(text.size(), prefix.size())), prefix.c_str(),
                              static_cast<int>(prefix.size()), TRUE) == CSTR_EQUAL;
}

// --- Packages.

/// Field `index` of a line of an INF, its key at 0; empty when there is none.
std::string Field(INFCONTEXT& line, DWORD index) {
  std::array<wchar_t, 4096> text{};
  if (!SetupGetStringFieldW(&line, index, text.data(), static_cast<DWORD>(text.size()), nullptr)) return {};
  return Utf8FromWide(text.data());
}

std::string VersionField(HINF inf, const wchar_t* key, DWORD index) {
  INFCONTEXT line{};
  return SetupFindFirstLineW(inf, L"Version", key, &line) ? Field(line, index) : std::string();
}

bool IsDriverFile(const std::string& file) {
  const std::string lower = LowerCase(file);
  return lower.size() > 4 && lower.compare(lower.size() - 4, 4, ".sys") == 0;
}

std::vector<std::string> ListedDrivers(HINF inf) {
  std::vector<std::string> drivers;
  for (const wchar_t* const section : {L"SourceDisksFiles", L"SourceDisksFiles.x86", L"SourceDisksFiles.amd64",
                                       L"SourceDisksFiles.ia64", L"SourceDisksFiles.arm64"}) {
    INFCONTEXT line{};
    BOOL isLine = SetupFindFirstLineW(inf, section, nullptr, &line);
    for (; isLine; isLine = SetupFindNextLine(&line, &line)) {
      std::string file = Field(line, 0);
      if (!IsDriverFile(file) || std::find(drivers.begin(), drivers.end(), file) != drivers.end()) continue;
      drivers.push_back(std::move(file));
    }
  }
  return drivers;
}

std::vector<std::wstring> OemInfs(const std::wstring& directory) {
  std::vector<std::wstring> names;
  WIN32_FIND_DATAW file;
  const Orvane::FindHandle found(FindFirstFileW((directory + L"oem*.inf").c_str(), &file));
  if (!found) return names;
  do {
    names.emplace_back(file.cFileName);
  } while (FindNextFileW(found.get(), &file));
  const auto number = [](const std::wstring& name) { return std::wcstoul(name.c_str() + 3, nullptr, 10); };
  std::sort(names.begin(), names.end(), [number](const std::wstring& a, const std::wstring& b) {
    return std::pair(number(a), a) < std::pair(number(b), b);
  });
  return names;
}

std::vector<OemPackage> ReadOemPackages() {
  std::vector<OemPackage> packages;
  const std::wstring directory = WindowsDirectory() + L"\\inf\\";
  for (const std::wstring& name : OemInfs(directory)) {
    const InfHandle inf(SetupOpenInfFileW((directory + name).c_str(), nullptr, INF_STYLE_WIN4, nullptr));
    if (!inf) continue;
    packages.push_back({LowerCase(Utf8FromWide(name)), VersionField(inf.get(), L"DriverVer", 2),
                        VersionField(inf.get(), L"Provider", 1), ListedDrivers(inf.get())});
  }
  return packages;
}

// --- Devices.

/// The INF that a device was installed from; empty for none.
std::wstring InstalledInf(HDEVINFO set, SP_DEVINFO_DATA& device) {
  const RegKey key(SetupDiOpenDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_DRV, KEY_QUERY_VALUE));
  std::array<wchar_t, MAX_PATH> text{};
  DWORD size = sizeof(text) - sizeof(wchar_t);
  if (!key || RegQueryValueExW(key.get(), L"InfPath", nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size) !=
                  ERROR_SUCCESS) {
    return {};
  }
  return text.data();
}

/// The INFs that extend a device.
std::vector<std::wstring> ExtensionInfs(HDEVINFO set, SP_DEVINFO_DATA& device) {
  std::vector<std::wstring> infs;
  std::vector<wchar_t> texts(1 << 15);
  DEVPROPTYPE type = 0;
  // Texts such as "oem3.inf:PCI\VEN_8086...", each with its end, and one end more.
  const auto size = static_cast<DWORD>((texts.size() - 2) * sizeof(wchar_t));
  if (!SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_ExtendedConfigurationIds, &type,
                                 reinterpret_cast<BYTE*>(texts.data()), size, nullptr, 0) ||
      type != DEVPROP_TYPE_STRING_LIST) {
    return infs;
  }
  for (const wchar_t* text = texts.data(); *text != L'\0'; text += std::wcslen(text) + 1) {
    infs.emplace_back(text, std::wcscspn(text, L":"));
  }
  return infs;
}

std::vector<std::string> FindInfsInUse() {
  std::vector<std::string> infs;
  const auto add = [&infs](const std::wstring& inf) {
    std::string name = LowerCase(Utf8FromWide(inf));
    if (!name.empty() && std::find(infs.begin(), infs.end(), name) == infs.end()) infs.push_back(std::move(name));
  };
  const DeviceSet set(SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_ALLCLASSES));
  if (!set) return infs;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; SetupDiEnumDeviceInfo(set.get(), i, &device); ++i) {
    add(InstalledInf(set.get(), device));
    for (const std::wstring& inf : ExtensionInfs(set.get(), device)) add(inf);
  }
  return infs;
}

}  // namespace

MachineFacts CollectFacts() {
  return {Listed(Orvane::ByDevice), ListedServices(), FindMissingImages(), ReadOemPackages(), FindInfsInUse()};
}

std::wstring ImagePath(const std::wstring& configured, const std::wstring& service,
                       const std::wstring& windowsDirectory) {
  const std::wstring root = L"\\SystemRoot\\";
  const std::wstring dos = L"\\??\\";
  if (configured.empty()) return windowsDirectory + L"\\System32\\drivers\\" + service + L".sys";
  const std::wstring path = Expanded(configured);
  if (BeginsWith(path, root)) return windowsDirectory + L"\\" + path.substr(root.size());
  if (BeginsWith(path, dos)) return path.substr(dos.size());
  if (path.find(L':') != std::wstring::npos) return path;
  return path.front() == L'\\' ? std::wstring() : windowsDirectory + L"\\" + path;
}

}  // namespace driverlist
