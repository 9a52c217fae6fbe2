/// @file
/// What someone may have meant who wrote a name that there is not.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace inventory {

/// The one of `names` that is most like `name`: a few letters are missing, added, exchanged or others, or one is a part
/// of the other. Empty when no name is near.
std::string_view NearestName(std::string_view name, const std::vector<std::string_view>& names);

}  // namespace inventory
