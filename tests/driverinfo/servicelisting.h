/// @file
/// What the tests of the service listing share: real services of a scratch machine, listed through driverinfo.dll.
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "driverinfo.h"
#include "expectedlines.h"
#include "importhook.h"
#include "records.h"
#include "scratchmachine.h"

namespace test {

/// The entries that EnumServicesStatusA gives.
using Entries = ENUM_SERVICE_STATUSA;

/// Counts the service and find handles that the library holds while it lives.
struct OpenHandles {
  int services = 0;
  int finds = 0;
  HOOK(openManager, Library(), OpenSCManagerA, [this](const char* machine, const char* database, DWORD access) {
    return Counted(openManager.Real(machine, database, access));
  });
  HOOK(openService, Library(), OpenServiceA, [this](SC_HANDLE manager, const char* name, DWORD access) {
    return Counted(openService.Real(manager, name, access));
  });
  HOOK(closeService, Library(), CloseServiceHandle, [this](SC_HANDLE handle) {
    --services;
    return closeService.Real(handle);
  });
  HOOK(find, Library(), FindFirstFileA, [this](const char* path, WIN32_FIND_DATAA* data) {
    const HANDLE found = find.Real(path, data);
    if (found != INVALID_HANDLE_VALUE) ++finds;
    return found;
  });
  HOOK(closeFind, Library(), FindClose, [this](HANDLE handle) {
    --finds;
    return closeFind.Real(handle);
  });

 private:
  SC_HANDLE Counted(SC_HANDLE handle) {
    if (handle != nullptr) ++services;
    return handle;
  }
};

class ServiceListing : public ScratchMachine {
 protected:
  std::vector<Orvane::DriverData> Records() {
    std::vector<Orvane::DriverData> drivers;
    EXPECT_EQ(info.list_drivers(drivers, Orvane::Registered), 0);
    return drivers;
  }

  std::vector<std::string> List() { return Described(Records()); }

  std::vector<std::string> NamesAndPaths() {
    std::vector<std::string> lines;
    for (const Orvane::DriverData& driver : Records()) lines.push_back(driver.name + " " + driver.path);
    return lines;
  }

  Orvane::DriverInfo info;
  LogCapture log;
};

}  // namespace test
