/// @file
/// The order of driver versions. Uses no platform API.
#pragma once

#include <string>
#include <string_view>

namespace Orvane {

/// Compares two driver versions: -1 if `a` is older, 1 if it is newer, 0 if they are equivalent.
///
/// Both are split at every "." and " " (adjacent separators enclose an empty component) and compared component by
/// component: as base-16 numbers of up to 63 bits if both components are, otherwise as bytes. If all common components
/// are equivalent, the version with more components is newer. `b` is lower-cased with the global locale, `a` is not:
/// pass it in lower case. Throws only std::bad_alloc.
int CompareVersion(std::string a, const std::string& b);

/// The same for `a` lower-cased with the global locale, without copying either.
int CompareVersionInLowerCase(std::string_view a, std::string_view b);

}  // namespace Orvane
