/// @file
/// The width of a character on a terminal.
#pragma once

#include <cstddef>

namespace driverlist {

/// Columns of a terminal that `c` takes: 2 for East Asian wide characters and emoji, 0 for marks that combine with the
/// character before them, else 1.
std::size_t ColumnsOf(char32_t c);

}  // namespace driverlist
