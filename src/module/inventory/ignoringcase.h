/// @file
/// Texts whose case Windows ignores.
#pragma once

#include <string_view>

namespace inventory {

/// Less than, equal to or greater than 0 if Orvane::LowerCase(a) is before, equal to or after Orvane::LowerCase(b), by
/// bytes. Both are UTF-8. Calls Windows only for texts that are not ASCII, and makes no copies otherwise, because large
/// inventories are sorted with it.
int CompareIgnoringCase(std::string_view a, std::string_view b);

}  // namespace inventory
