/// @file
/// A view of bytes that are kept elsewhere, and their hexadecimal text.
#pragma once

#include <string>
#include <string_view>

namespace trust {

/// A view of bytes: of a file, of a signature.
using Bytes = std::string_view;

/// In lower case.
inline std::string Hex(Bytes bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(2 * bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace trust
