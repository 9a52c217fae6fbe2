#include "inventory/head.h"

#include <windows.h>

#include <array>
#include <cstdio>

#include "platform/encoding.h"

namespace inventory {
namespace {

std::string HostName() {
  std::array<wchar_t, 256> name{};
  DWORD size = static_cast<DWORD>(name.size());
  if (!GetComputerNameExW(ComputerNamePhysicalDnsHostname, name.data(), &size)) return {};
  return Orvane::Utf8FromWide({name.data(), size});
}

std::string MachineGuid() {
  std::array<wchar_t, 128> guid{};
  DWORD size = static_cast<DWORD>((guid.size() - 1) * sizeof(wchar_t));
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Cryptography", L"MachineGuid",
                                      RRF_RT_REG_SZ, nullptr, guid.data(), &size);
  return status == ERROR_SUCCESS ? Orvane::Utf8FromWide(guid.data()) : std::string();
}

std::string WindowsVersion() {
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  const auto getVersion =
      reinterpret_cast<LONG(WINAPI*)(OSVERSIONINFOW*)>(reinterpret_cast<void*>(GetProcAddress(ntdll, "RtlGetVersion")));
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  if (getVersion == nullptr || getVersion(&version) != 0) return {};
  return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
         std::to_string(version.dwBuildNumber);
}

std::string UtcNow() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  char text[40];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", now.wYear, now.wMonth, now.wDay, now.wHour,
                now.wMinute, now.wSecond);
  return text;
}

}  // namespace

std::string ToolVersion() { return INVENTORY_VERSION; }

Head ThisMachine(const std::string& hostId) {
  return {ToolVersion(), HostName(), hostId.empty() ? MachineGuid() : hostId, WindowsVersion(), UtcNow()};
}

}  // namespace inventory
