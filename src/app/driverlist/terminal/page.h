/// @file
/// The page on which text for people is written.
#pragma once

#include <cstddef>

namespace driverlist {

struct Page {
  /// Width of a line; 0 for no limit.
  std::size_t width = 0;
  /// Whether it shows colour codes.
  bool colours = false;
};

}  // namespace driverlist
