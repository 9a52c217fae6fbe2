/// @file
/// Patterns that texts match or not. All are UTF-8, and case does not count.
#pragma once

#include <string>
#include <string_view>

#include "inventory/members.h"

namespace inventory {

/// Whether `text` contains "*" or "?".
bool HasWildcards(std::string_view text);

/// A pattern, to be matched with many texts.
class Pattern {
 public:
  /// Matches whole texts: "*" is any text, even an empty one, "?" is one character, and any other character is itself.
  explicit Pattern(std::string_view pattern);

  /// Matches texts that contain `text`; if `text` has wildcards, it is a pattern for whole texts.
  static Pattern Search(std::string_view text);

  bool Matches(std::string_view text) const;

  /// Whether the text of `value`, or one of its texts, matches. No value counts as the empty text.
  bool Matches(const Value& value) const;

 private:
  std::string m_lower;
};

}  // namespace inventory
