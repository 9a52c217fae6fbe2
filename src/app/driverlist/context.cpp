#include "context.h"

#include <windows.h>

#include <cstdio>

#include "unicode.h"

namespace driverlist {

std::string HostName() {
  wchar_t name[256];
  DWORD size = 256;
  return GetComputerNameExW(ComputerNamePhysicalDnsHostname, name, &size) ? Utf8FromWide({name, size}) : std::string();
}

std::string WindowsVersion() {
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  const auto getVersion =
      reinterpret_cast<LONG(WINAPI*)(OSVERSIONINFOW*)>(reinterpret_cast<void*>(GetProcAddress(ntdll, "RtlGetVersion")));
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  if (getVersion == nullptr || getVersion(&version) != 0) return std::string();
  return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
         std::to_string(version.dwBuildNumber);
}

std::string ToolVersion() { return DRIVERLIST_VERSION; }

std::string UtcNow() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  char text[40];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", now.wYear, now.wMonth, now.wDay, now.wHour,
                now.wMinute, now.wSecond);
  return text;
}

}  // namespace driverlist
