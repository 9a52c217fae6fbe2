/// @file
/// Patterns that texts are like, or not. All are UTF-8, and case does not count.
#pragma once

#include <string>
#include <string_view>

#include "inventory/members.h"

namespace inventory {

/// Whether "*" or "?" is in `text`.
bool HasWildcards(std::string_view text);

/// A pattern for many texts.
class Pattern {
 public:
  /// For whole texts: "*" is any text, also an empty one, "?" is one character, any other character is itself.
  explicit Pattern(std::string_view pattern);

  /// For texts that hold `text`; where that has wildcards, a pattern for whole texts.
  static Pattern Search(std::string_view text);

  bool Matches(std::string_view text) const;

  /// Whether the text of `value` matches; one of them, if it has several. No value is the empty text.
  bool Matches(const Value& value) const;

 private:
  std::string m_lower;
};

}  // namespace inventory
