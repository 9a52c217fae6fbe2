/// @file
/// Where and when a listing is made.
#pragma once

#include <string>

namespace driverlist {

/// Name of this machine, in UTF-8; empty when the system does not tell.
std::string HostName();

/// Version of this Windows, such as "10.0.22621": what it is, not what it tells programs that do not know it. Empty when the
/// system does not tell.
std::string WindowsVersion();

/// Version of this program.
std::string ToolVersion();

/// The time now, in UTC, as ISO 8601 writes it: "2024-05-06T07:08:09Z".
std::string UtcNow();

}  // namespace driverlist
