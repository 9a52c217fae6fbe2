#include <windows.h>

#include <sys/timeb.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>

#include "bare.h"
#include "platform/handles.h"

namespace bench::bare {
namespace {

using Orvane::FindHandle;
using Orvane::ModuleHandle;
using Orvane::ServiceHandle;

const char* const States[] = {"Reserved", "Stopped",          "Start Pending", "Stop Pending",
                              "Running",  "Continue Pending", "Pause Pending", "Paused"};
const char* const StartTypes[] = {"Boot Start", "System Start", "Automatic", "Manual", "Disabled"};

/// Calls `act` with WoW64 file-system redirection off, where it can be switched off.
template <typename Act>
void WithoutRedirection(Act act) {
  const ModuleHandle kernel(LoadLibraryExA("kernel32.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
  using Disable = BOOL(WINAPI*)(void**);
  using Revert = BOOL(WINAPI*)(void*);
  void* former = nullptr;
  const auto disable = reinterpret_cast<Disable>(
      reinterpret_cast<void*>(GetProcAddress(kernel.get(), "Wow64DisableWow64FsRedirection")));
  if (disable != nullptr && disable(&former)) act();
  const auto revert =
      reinterpret_cast<Revert>(reinterpret_cast<void*>(GetProcAddress(kernel.get(), "Wow64RevertWow64FsRedirection")));
  if (revert != nullptr) revert(nullptr);
}

FindHandle FindFile(const std::string& path, WIN32_FIND_DATAA& file) {
  FindHandle found(FindFirstFileA(path.c_str(), &file));
  if (!found) {
    WithoutRedirection([&] { found.reset(FindFirstFileA(path.c_str(), &file)); });
  }
  return found;
}

bool StartsWith(const std::string& text, const char* start) { return text.compare(0, std::strlen(start), start) == 0; }

std::string FirstPlace(const std::string& path, const std::string& system) {
  if (path.find(':') != std::string::npos) return path;
  for (const char* const start : {"\\system32", "system32", "\\System32", "System32", "\\SystemRoot\\"}) {
    if (StartsWith(path, start)) return system + path.substr(path.rfind("32") + 2);
  }
  return system + "\\drivers\\" + path;
}

/// Looks where a registry path may lead, and leaves in `path` where the file was.
FindHandle FindImage(std::string& path, WIN32_FIND_DATAA& file) {
  char system[MAX_PATH];
  char windows[MAX_PATH];
  GetSystemDirectoryA(system, MAX_PATH);
  GetWindowsDirectoryA(windows, MAX_PATH);
  std::string place = FirstPlace(path, system);
  FindHandle found = FindFile(place, file);
  if (!found) {
    place = std::string(system) + "\\" + path;
    found = FindFile(place, file);
  }
  if (!found) {
    GetWindowsDirectoryA(windows, MAX_PATH);
    place = std::string(windows) + "\\" + path;
    found = FindFile(place, file);
  }
  if (found) path = place;
  return found;
}

std::string RegisteredPath(const std::string& stem) {
  HKEY key = nullptr;
  RegOpenKeyExA(HKEY_LOCAL_MACHINE, ("System\\CurrentControlSet\\Services\\" + stem).c_str(), 0, KEY_QUERY_VALUE, &key);
  char path[1024] = "";
  DWORD size = sizeof(path);
  DWORD type = REG_EXPAND_SZ;
  RegQueryValueExA(key, "ImagePath", nullptr, &type, reinterpret_cast<BYTE*>(path), &size);
  if (std::strchr(path, '%') == nullptr) return path;
  char expanded[1024] = "";
  ExpandEnvironmentStringsA(path, expanded, sizeof(expanded));
  return expanded;
}

/// The time as "MM/DD/YYYY HH:MM:SS", after the run-time library was asked whether it can hold it.
std::string DateText(const FILETIME& time) {
  SYSTEMTIME utc;
  SYSTEMTIME local;
  FileTimeToSystemTime(&time, &utc);
  SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
  std::tm parts = {};
  parts.tm_year = local.wYear - 1900;
  parts.tm_mon = local.wMonth - 1;
  parts.tm_mday = local.wDay;
  parts.tm_hour = local.wHour;
  parts.tm_min = local.wMinute;
  parts.tm_sec = local.wSecond;
  std::tm asUtc = parts;
  const __time64_t seconds = _mktime64(&parts);
  __timeb64 zone;
  _ftime64_s(&zone);
  asUtc.tm_min -= _localtime64(&seconds)->tm_isdst * 60 - zone.timezone;
  if (_mktime64(&asUtc) == -1) return {};
  char text[40];
  std::snprintf(text, sizeof(text), "%02u/%02u/%04u %02u:%02u:%02u", local.wMonth, local.wDay, local.wYear, local.wHour,
                local.wMinute, local.wSecond);
  return text;
}

std::string VersionText(DWORD high, DWORD low) {
  char text[40];
  std::snprintf(text, sizeof(text), "%d.%d.%d.%d", HIWORD(high), LOWORD(high), HIWORD(low), LOWORD(low));
  return text;
}

std::string VersionValue(const void* resource, const WORD* translation, const char* key) {
  char path[64];
  std::snprintf(path, sizeof(path), "\\StringFileInfo\\%04x%04x\\%s", translation[0], translation[1], key);
  void* text = nullptr;
  UINT length = 0;
  return VerQueryValueA(resource, path, &text, &length) && length > 0 ? static_cast<char*>(text) : "";
}

void ReadVersionResource(const std::string& path, Record& record) {
  DWORD handle = 0;
  const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &handle);
  if (size == 0) return;
  const std::unique_ptr<char[]> resource(new char[size]);
  GetFileVersionInfoA(path.c_str(), handle, size, resource.get());
  void* translation = nullptr;
  UINT length = 0;
  VerQueryValueA(resource.get(), "\\VarFileInfo\\Translation", &translation, &length);
  void* block = nullptr;
  length = 0;
  if (VerQueryValueA(resource.get(), "\\", &block, &length)) {
    const auto* const fixed = static_cast<const VS_FIXEDFILEINFO*>(block);
    record.fileVersion = VersionText(fixed->dwFileVersionMS, fixed->dwFileVersionLS);
    record.productVersion = VersionText(fixed->dwProductVersionMS, fixed->dwProductVersionLS);
  }
  if (translation == nullptr) return;
  record.description = VersionValue(resource.get(), static_cast<WORD*>(translation), "FileDescription");
  record.provider = VersionValue(resource.get(), static_cast<WORD*>(translation), "CompanyName");
}

/// The image's file name without its extension, which also names the registry key.
std::string Stem(const std::string& configuredPath, const char* serviceName) {
  if (configuredPath.empty()) return serviceName;
  std::string file = configuredPath.substr(configuredPath.rfind('\\') + 1);
  for (char& c : file) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return file.substr(0, file.rfind('.'));
}

/// False when there is none.
bool ReadImage(const std::string& stem, Record& record) {
  WIN32_FIND_DATAA file;
  record.path = RegisteredPath(stem);
  FindHandle found = FindImage(record.path, file);
  if (!found) {
    record.path = "\\SystemRoot\\system32\\drivers\\" + stem + ".sys";
    found = FindImage(record.path, file);
  }
  if (!found) return false;
  record.size = std::to_string((static_cast<unsigned long long>(file.nFileSizeHigh) << 22) | (file.nFileSizeLow >> 10));
  record.date = DateText(file.ftCreationTime);
  ReadVersionResource(record.path, record);
  if (record.fileVersion.empty() || record.description.empty() || record.provider.empty()) {
    WithoutRedirection([&] { ReadVersionResource(record.path, record); });
  }
  found.reset();
  const std::string name = record.path.substr(record.path.rfind('\\') + 1);
  record.name = name.substr(0, name.find('.')) + ".sys";
  return true;
}

void ReadService(SC_HANDLE manager, const ENUM_SERVICE_STATUSA& entry, Records& records) {
  const ServiceHandle service(OpenServiceA(manager, entry.lpServiceName, SERVICE_QUERY_CONFIG));
  alignas(QUERY_SERVICE_CONFIGA) char buffer[4096];
  auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGA*>(buffer);
  DWORD needed = 0;
  QueryServiceConfigA(service.get(), config, sizeof(buffer), &needed);
  Record record;
  if (ReadImage(Stem(config->lpBinaryPathName, entry.lpServiceName), record)) {
    record.state = States[entry.ServiceStatus.dwCurrentState];
    record.startType = StartTypes[config->dwStartType];
    records.push_back(std::move(record));
  }
}

}  // namespace

Records ListServices() {
  const ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
  DWORD size = 0;
  DWORD count = 0;
  DWORD resume = 0;
  EnumServicesStatusA(manager.get(), SERVICE_DRIVER, SERVICE_STATE_ALL, nullptr, 0, &size, &count, &resume);
  const std::unique_ptr<char[]> buffer(new char[size]);
  auto* const entries = reinterpret_cast<ENUM_SERVICE_STATUSA*>(buffer.get());
  count = 0;
  DWORD needed = 0;
  EnumServicesStatusA(manager.get(), SERVICE_DRIVER, SERVICE_STATE_ALL, entries, size, &needed, &count, &resume);
  Records records;
  std::for_each(entries, entries + count,
                [&](const ENUM_SERVICE_STATUSA& entry) { ReadService(manager.get(), entry, records); });
  ReadChipsetPackages(records);
  return records;
}

}  // namespace bench::bare
