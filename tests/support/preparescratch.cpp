// Makes the Wine prefix that it runs in one that tests may change: takes away the driver services that Wine registers, from the
// next start of its server on, and what interrupted tests left behind.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "scratchmachine.h"

namespace {

constexpr char Services[] = "System\\CurrentControlSet\\Services";

std::vector<std::string> SubkeysOf(HKEY key) {
  std::vector<std::string> names;
  char name[256];
  for (DWORD size = sizeof(name); RegEnumKeyA(key, static_cast<DWORD>(names.size()), name, size) == ERROR_SUCCESS;) {
    names.emplace_back(name);
  }
  return names;
}

bool IsDriver(HKEY services, const std::string& name) {
  DWORD type = 0;
  DWORD size = sizeof(type);
  return RegGetValueA(services, name.c_str(), "Type", RRF_RT_REG_DWORD, nullptr, &type, &size) == ERROR_SUCCESS &&
         (type & SERVICE_DRIVER) != 0;
}

}  // namespace

int main() {
  if (GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") == nullptr) {
    std::fputs("preparescratch: this is not Wine; nothing was changed.\n", stderr);
    return 1;
  }
  HKEY services = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, Services, 0, KEY_READ | KEY_WRITE | DELETE, &services) != ERROR_SUCCESS) {
    std::fputs("preparescratch: the registry key of the services cannot be opened.\n", stderr);
    return 1;
  }
  for (const std::string& name : SubkeysOf(services)) {
    if (IsDriver(services, name)) RegDeleteTreeA(services, name.c_str());
  }
  RegCloseKey(services);
  for (const char* const key : {"SOFTWARE\\Intel", "SOFTWARE\\WOW6432Node\\AMD"})
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, key);
  test::MarkAsScratchMachine();
  return 0;
}
