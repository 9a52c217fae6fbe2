/// @file
/// Where and when a listing is made.
#pragma once

#include <string>

namespace driverlist {

/// Name of this machine, in UTF-8; empty when the system does not tell.
std::string HostName();

/// The time now, in UTC, as ISO 8601 writes it: "2024-05-06T07:08:09Z".
std::string UtcNow();

}  // namespace driverlist
