/// @file
/// The order of values, one for sorting and for comparing.
#pragma once

#include <cstdint>
#include <string>

#include "inventory/members.h"

namespace inventory {

/// What a value is ordered by.
struct OrderKey {
  /// Unknown values come first.
  bool isKnown = false;
  std::uint64_t number = 0;
  std::string text;
};

bool operator<(const OrderKey& a, const OrderKey& b);

/// Versions are ordered by their VersionKey(), numbers as numbers, also where they are texts, as in the listings of the
/// library; all else by the bytes of its text. A version that says nothing is unknown.
OrderKey OrderKeyOf(const Value& value, ValueType type);

}  // namespace inventory
