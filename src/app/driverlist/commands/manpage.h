/// @file
/// The manual page, for "man".
#pragma once

#include <string>

namespace driverlist {

/// In the macros of man(7), made from the option table and the members.
std::string ManPage();

}  // namespace driverlist
