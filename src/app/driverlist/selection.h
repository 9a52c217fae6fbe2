/// @file
/// Which drivers a listing shows, and in which order.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "columns.h"
#include "driverinfo.h"

namespace driverlist {

/// A field whose whole text must match a pattern.
struct Condition {
  Column column;
  std::string pattern;
};

/// Patterns are UTF-8, as MatchesPattern() takes them.
struct Selection {
  /// One field at least must match it.
  std::optional<std::string> match;
  /// All must hold.
  std::vector<Condition> conditions;
  /// Without one, the order of the listing stays.
  std::optional<Column> sort;
};

/// Whether the whole of `text` is like `pattern`: "*" stands for any characters, also none, "?" for one character, any other
/// character for itself in either case. Both are UTF-8.
bool MatchesPattern(std::string_view text, std::string_view pattern);

/// The drivers that `selection` chooses, in its order, equals in the order in which they came. Versions are ordered as
/// versions, sizes as numbers, dates as dates, all else as bytes of UTF-8; what is unknown comes first.
std::vector<Orvane::DriverData> Select(std::vector<Orvane::DriverData> drivers, const Selection& selection);

}  // namespace driverlist
