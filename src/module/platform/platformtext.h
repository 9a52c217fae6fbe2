/// @file
/// Texts that the platform wrote into one of our buffers. Windows usually terminates them, but a registry value may
/// fill its buffer, a path may be longer, a resource may end early. They are never read past the end of the buffer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace Orvane {

/// The text at `buffer` up to its first zero, or all `size` characters if there is no zero.
template <typename Char>
std::basic_string<Char> BoundedText(const Char* buffer, std::size_t size) {
  return std::basic_string<Char>(buffer, std::find(buffer, buffer + size, Char()));
}

/// How many bytes [begin, begin + size) has from `position` to its end, 0 at the very end; nullopt for a position
/// outside.
inline std::optional<std::size_t> BytesFrom(const char* position, const char* begin, std::size_t size) {
  const std::less<const char*> before;
  if (before(position, begin) || before(begin + size, position)) return std::nullopt;
  return static_cast<std::size_t>(begin + size - position);
}

/// The text that the platform placed at `text` in the bytes [begin, begin + size); empty for a null pointer.
template <typename Char>
std::basic_string<Char> TextWithin(const Char* text, const char* begin, std::size_t size) {
  if (text == nullptr) return {};
  const auto bytes = BytesFrom(reinterpret_cast<const char*>(text), begin, size);
  // A text outside is the platform's own and has its own terminator.
  return bytes ? BoundedText(text, *bytes / sizeof(Char)) : std::basic_string<Char>(text);
}

}  // namespace Orvane
