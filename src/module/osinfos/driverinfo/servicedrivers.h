/// @file
/// Drivers registered as services, and where their image files are.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "driverinfo.h"
#include "drivernames.h"

namespace Orvane {

/// The service listing.
struct ServiceDrivers {
  /// The listing behind DriverInfoSetType::Registered. Always returns 0.
  ///
  /// Appends a record for every kernel, file-system and recogniser driver whose image file is found, in the order of
  /// the service control manager, to `drivers` and to the process-wide cache; then the chipset packages, to `drivers`
  /// only. Once the cache holds anything, appends a copy of it instead. Services that cannot be opened or queried are
  /// logged at level 2 with the system's text, images that are not found at level 4. The registry key of each service
  /// stays open.
  static int ListRegisteredDrivers(std::vector<DriverData>& drivers);
};

/// Name of a service state (SERVICE_STATUS::dwCurrentState); empty for an unknown number.
std::string ServiceStateName(DWORD state);

/// Name of a start type (QUERY_SERVICE_CONFIGA::dwStartType); empty for an unknown number.
std::string ServiceStartTypeName(DWORD startType);

/// Finds a driver image by its registry path. A path that contains a ":" is used as it is; any other is tried in the
/// system directory (relative paths in its folder "drivers"). The next places are the system directory and the Windows
/// directory. Each place is tried a second time with WoW64 file-system redirection switched off. Returns the search
/// handle, which the caller closes with FindClose, and sets `path` to the path that matched and `*findData` to its
/// entry. If there is no such file, returns INVALID_HANDLE_VALUE and leaves `path` unchanged.
HANDLE FindDriverFile(std::string& path, WIN32_FIND_DATAA* findData);

/// The system's text for GetLastError(), including the line break at its end; empty if the system has no text.
std::string GetLastErrorText();

}  // namespace Orvane
