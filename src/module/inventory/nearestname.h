/// @file
/// Suggestions for a name that does not exist.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace inventory {

/// The one of `names` that is most similar to `name`: a few letters are missing, added, swapped or different, or one
/// name contains the other. Empty if no name is similar.
std::string_view NearestName(std::string_view name, const std::vector<std::string_view>& names);

}  // namespace inventory
