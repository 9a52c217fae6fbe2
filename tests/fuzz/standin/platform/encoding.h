/// @file
/// For the build machine: what the reader of snapshots needs of platform/encoding.h, for ASCII.
#pragma once

#include <string>
#include <string_view>

namespace Orvane {

inline std::string LowerCase(std::string_view utf8) {
  std::string lower(utf8);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

}  // namespace Orvane
