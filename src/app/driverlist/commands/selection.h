/// @file
/// Which drivers a list shows, and in which order.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/table.h"

namespace driverlist {

/// A column whose whole text must match a pattern.
struct Condition {
  inventory::Column column;
  std::string pattern;
};

/// Patterns are UTF-8, as MatchesPattern() takes them.
struct Selection {
  /// One column at least must match it.
  std::optional<std::string> match;
  /// All must hold.
  std::vector<Condition> conditions;
  /// Without one, the order of the table stays.
  std::optional<inventory::Column> sort;
};

/// Whether the whole of `text` is like `pattern`: "*" is any text, also an empty one, "?" is one character, any other
/// character is itself in either case. Both are UTF-8.
bool MatchesPattern(std::string_view text, std::string_view pattern);

/// The indexes of the rows that `selection` chooses, in its order, equal ones in the order of the table. Versions are
/// ordered by their VersionKey(), numbers as numbers, all else by the bytes of its text; rows without a value come
/// first.
std::vector<std::size_t> SelectedRows(const Table& table, const Selection& selection);

}  // namespace driverlist
