/// @file
/// The order of values, the same for sorting and for comparing.
#pragma once

#include <cstdint>
#include <string>

#include "inventory/members.h"

namespace inventory {

/// The key by which a value is ordered.
struct OrderKey {
  /// Unknown values come first.
  bool isKnown = false;
  std::uint64_t number = 0;
  std::string text;
};

bool operator<(const OrderKey& a, const OrderKey& b);

/// Versions are ordered by their VersionKey(); numbers as numbers, even if they are texts, as in the listings of the
/// library; everything else by the bytes of its text. A version without a value ("N/A") is unknown.
OrderKey OrderKeyOf(const Value& value, ValueType type);

}  // namespace inventory
