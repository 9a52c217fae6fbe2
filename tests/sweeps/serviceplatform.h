/// @file
/// The service control manager and the registry, as driverinfo.dll calls them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "faults.h"
#include "freshlibrary.h"
#include "importhook.h"
#include "remembered.h"

namespace sweeps {

struct ServicePlatform {
  ServicePlatform(Faults& numbered, Remembered& answers) : faults(numbered), remembered(answers) {}
  /// The library leaves its keys open for the life of the process; thousands of listings in one process may not.
  ~ServicePlatform() {
    for (const HKEY key : keys) RegCloseKey(key);
  }
  ServicePlatform(const ServicePlatform&) = delete;
  ServicePlatform& operator=(const ServicePlatform&) = delete;

  Faults& faults;
  Remembered& remembered;
  std::vector<HKEY> keys;
  /// Whether the service control manager can be opened.
  bool hasServices = true;

  HOOK(openManager, Library(), OpenSCManagerA,
       [this](const char* machine, const char* database, DWORD access) -> SC_HANDLE {
         if (faults.Hits("OpenSCManagerA", "", {ERROR_ACCESS_DENIED, ERROR_DATABASE_DOES_NOT_EXIST})) return nullptr;
         if (!hasServices) return nullptr;
         return faults.Opened("service handle",
                              remembered.Service("", [&] { return openManager.Real(machine, database, access); }));
       });
  HOOK(enumerate, Library(), EnumServicesStatusA,
       [this](SC_HANDLE manager, DWORD type, DWORD state, ENUM_SERVICE_STATUSA* services, DWORD size, DWORD* needed,
              DWORD* count, DWORD* resume) -> BOOL {
         if (faults.Hits("EnumServicesStatusA", "", {ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE})) return FALSE;
         return enumerate.Real(manager, type, state, services, size, needed, count, resume);
       });
  HOOK(openService, Library(), OpenServiceA, [this](SC_HANDLE manager, const char* name, DWORD access) -> SC_HANDLE {
    if (faults.Hits("OpenServiceA", name, {ERROR_ACCESS_DENIED, ERROR_SERVICE_DOES_NOT_EXIST})) return nullptr;
    return faults.Opened("service handle",
                         remembered.Service(name, [&] { return openService.Real(manager, name, access); }));
  });
  HOOK(query, Library(), QueryServiceConfigA,
       [this](SC_HANDLE service, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* needed) -> BOOL {
         if (faults.Hits("QueryServiceConfigA", "", {ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_HANDLE})) return FALSE;
         return remembered.Config(service, config, size, needed,
                                  [&] { return query.Real(service, config, size, needed); });
       });
  HOOK(closeService, Library(), CloseServiceHandle, [this](SC_HANDLE handle) -> BOOL {
    faults.Closed("service handle", handle);
    return faults.Hits("CloseServiceHandle", "", {ERROR_INVALID_HANDLE}) ? FALSE : TRUE;
  });
  HOOK(openKey, Library(), RegOpenKeyExA,
       [this](HKEY root, const char* path, DWORD options, REGSAM access, HKEY* key) -> LSTATUS {
         if (faults.Hits("RegOpenKeyExA", path, {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED}))
           return GetLastErrorStatus();
         const LSTATUS status = openKey.Real(root, path, options, access, key);
         if (status == ERROR_SUCCESS) {
           keys.push_back(*key);
           faults.Answer("opened");
         }
         return status;
       });
  HOOK(queryValue, Library(), RegQueryValueExA,
       [this](HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) -> LSTATUS {
         if (faults.Hits("RegQueryValueExA", name, {ERROR_FILE_NOT_FOUND, ERROR_MORE_DATA}))
           return GetLastErrorStatus();
         const LSTATUS status = queryValue.Real(key, name, reserved, type, data, size);
         if (status == ERROR_SUCCESS) faults.Answer("read");
         return status;
       });

 private:
  static LSTATUS GetLastErrorStatus() { return static_cast<LSTATUS>(GetLastError()); }
};

}  // namespace sweeps
