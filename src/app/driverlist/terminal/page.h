/// @file
/// What text for people is written on.
#pragma once

#include <cstddef>

namespace driverlist {

struct Page {
  /// Columns of a line; 0 when lines may be as long as they are.
  std::size_t width = 0;
  /// Whether it shows colour codes.
  bool colours = false;
};

}  // namespace driverlist
