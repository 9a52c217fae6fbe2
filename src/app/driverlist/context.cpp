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

std::string UtcNow() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  char text[40];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", now.wYear, now.wMonth, now.wDay, now.wHour,
                now.wMinute, now.wSecond);
  return text;
}

}  // namespace driverlist
