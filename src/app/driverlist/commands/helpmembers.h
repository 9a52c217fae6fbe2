/// @file
/// What "driverlist help members" prints.
#pragma once

#include <cstddef>
#include <string>

namespace driverlist {

/// All members with their types, the kinds of records that have them and their descriptions, in lines of up to `width`
/// columns; then the fields of the library's listings.
std::string MembersHelp(std::size_t width);

}  // namespace driverlist
