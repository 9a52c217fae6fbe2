/// @file
/// Texts of which Windows ignores the case.
#pragma once

#include <string_view>

namespace inventory {

/// Below, at or above 0 as Orvane::LowerCase(a) is before, at or behind Orvane::LowerCase(b) in the order of bytes.
/// Asks Windows only where a text goes beyond ASCII, and makes no copies before that: large inventories are sorted by
/// it. Both are UTF-8.
int CompareIgnoringCase(std::string_view a, std::string_view b);

}  // namespace inventory
