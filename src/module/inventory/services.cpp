#include "inventory/services.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "inventory/windowsdirectory.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"
#include "servicedrivers.h"

namespace inventory {
namespace {

using Orvane::ServiceHandle;
using Orvane::TextWithin;
using Orvane::Utf8FromWide;

struct Enumerated {
  std::wstring name;
  DWORD state;
};

/// Appends the entries in `buffer`: `count` of them, according to the platform.
void AppendEntries(const std::vector<char>& buffer, DWORD count, std::vector<Enumerated>& services) {
  const auto* const entries = reinterpret_cast<const ENUM_SERVICE_STATUS_PROCESSW*>(buffer.data());
  const std::size_t room = buffer.size() / sizeof(*entries);
  for (std::size_t i = 0; i < std::min<std::size_t>(count, room); ++i) {
    std::wstring name = TextWithin(entries[i].lpServiceName, buffer.data(), buffer.size());
    if (!name.empty()) services.push_back({std::move(name), entries[i].ServiceStatusProcess.dwCurrentState});
  }
}

std::vector<Enumerated> DriverServices(SC_HANDLE manager) {
  std::vector<Enumerated> services;
  constexpr std::size_t largest = 16 << 20;
  std::vector<char> buffer(1 << 16);
  DWORD resume = 0;
  for (;;) {
    DWORD needed = 0;
    DWORD count = 0;
    const BOOL isAll = EnumServicesStatusExW(manager, SC_ENUM_PROCESS_INFO, SERVICE_DRIVER, SERVICE_STATE_ALL,
                                             reinterpret_cast<BYTE*>(buffer.data()), static_cast<DWORD>(buffer.size()),
                                             &needed, &count, &resume, nullptr);
    if (!isAll && GetLastError() != ERROR_MORE_DATA) return services;
    AppendEntries(buffer, count, services);
    if (isAll) return services;
    // No entry was returned although there are more: an entry does not fit, or the enumeration is stuck.
    if (count == 0 && (needed <= buffer.size() || buffer.size() >= largest)) return services;
    buffer.resize(std::min(std::max<std::size_t>(buffer.size(), needed), largest));
  }
}

struct Configuration {
  std::wstring image;
  DWORD startType;
};

std::optional<Configuration> ReadConfiguration(SC_HANDLE manager, const std::wstring& service) {
  const ServiceHandle opened(OpenServiceW(manager, service.c_str(), SERVICE_QUERY_CONFIG));
  // The largest configuration that Windows allows.
  alignas(QUERY_SERVICE_CONFIGW) std::array<char, 8192> buffer{};
  auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer.data());
  DWORD needed = 0;
  if (!opened || !QueryServiceConfigW(opened.get(), config, static_cast<DWORD>(buffer.size()), &needed)) {
    return std::nullopt;
  }
  return Configuration{TextWithin(config->lpBinaryPathName, buffer.data(), buffer.size()), config->dwStartType};
}

std::string UtcText(const FILETIME& fileTime) {
  SYSTEMTIME time{};
  if (!FileTimeToSystemTime(&fileTime, &time)) return {};
  char text[40];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", time.wYear, time.wMonth, time.wDay, time.wHour,
                time.wMinute, time.wSecond);
  return text;
}

void LookAtImage(const std::wstring& path, ServiceFacts& facts) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) {
    facts.image_time = UtcText(data.ftCreationTime);
    facts.size = (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
    return;
  }
  const DWORD error = GetLastError();
  facts.image_missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME;
}

ServiceFacts Describe(SC_HANDLE manager, const Enumerated& service, const std::wstring& windowsDirectory) {
  ServiceFacts facts;
  facts.service = Utf8FromWide(service.name);
  facts.state = Orvane::ServiceStateName(service.state);
  const auto configuration = ReadConfiguration(manager, service.name);
  if (!configuration) {
    const DWORD error = GetLastError();
    ORVANE_LOG(2) << "The configuration of the service " << facts.service
                  << " cannot be read: " << Orvane::ErrorText(error);
    return facts;
  }
  facts.start_type = Orvane::ServiceStartTypeName(configuration->startType);
  facts.configured = Utf8FromWide(configuration->image);
  const std::wstring path =
      windowsDirectory.empty() ? std::wstring() : ImagePath(configuration->image, service.name, windowsDirectory);
  facts.path = path.empty() ? facts.configured : Utf8FromWide(path);
  if (!path.empty()) LookAtImage(path, facts);
  return facts;
}

std::wstring Expanded(const std::wstring& text) {
  std::array<wchar_t, 4096> expanded{};
  const DWORD size = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  return size > 0 && size <= expanded.size() ? Orvane::BoundedText(expanded.data(), expanded.size()) : text;
}

bool BeginsWith(const std::wstring& text, const std::wstring& prefix) {
  return CompareStringOrdinal(text.c_str(), static_cast<int>(std::min(text.size(), prefix.size())), prefix.c_str(),
                              static_cast<int>(prefix.size()), TRUE) == CSTR_EQUAL;
}

}  // namespace

std::vector<ServiceFacts> ReadServices() {
  std::vector<ServiceFacts> services;
  const std::wstring windows = WindowsDirectory();
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
  if (!manager) {
    const DWORD error = GetLastError();
    ORVANE_LOG(2) << "The services cannot be listed: " << Orvane::ErrorText(error);
    return services;
  }
  for (const Enumerated& service : DriverServices(manager.get())) {
    services.push_back(Describe(manager.get(), service, windows));
  }
  return services;
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

}  // namespace inventory
