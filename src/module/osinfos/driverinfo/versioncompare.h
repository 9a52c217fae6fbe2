/// @file
/// The order of driver versions. Needs nothing of the platform.
#pragma once

#include <string>
#include <string_view>

namespace Orvane {

/// Compares two driver versions: -1 when `a` is the older one, 1 when it is the newer one, 0 when they are equivalent.
///
/// Both are split at every "." and " " (adjacent separators enclose an empty component) and compared component by
/// component: as base-16 numbers of up to 63 bits where both are, else as bytes. When all common components are
/// equivalent, the version with more of them is the newer one.
/// `b` is lower-cased with the global locale, `a` is not: pass it in lower case.
/// Throws nothing but std::bad_alloc.
int CompareVersion(std::string a, const std::string& b);

/// The same of `a` in lower case by the global locale, without a copy of either.
int CompareVersionInLowerCase(std::string_view a, std::string_view b);

}  // namespace Orvane
