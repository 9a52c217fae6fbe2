/// @file
/// The manual page, for "man".
#pragma once

#include <string>

namespace driverlist {

/// Written with the macros of man(7), generated from the option table and the members.
std::string ManPage();

}  // namespace driverlist
