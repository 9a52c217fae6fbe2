/// @file
/// The order of driver versions, which is the library's.
#pragma once

#include <string>

namespace driverlist {

/// Whether version `a` is older than `b` by operator< of the library's records. The order contradicts itself where numbers and
/// texts mix: see there.
bool IsOlder(const std::string& a, const std::string& b);

/// False for the empty text and for "N/A", which stand for a version that is not known or not there.
bool IsKnownVersion(const std::string& version);

}  // namespace driverlist
