/// @file
/// Descriptions of the members of a record, for people.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "inventory/members.h"

namespace inventory {

struct MemberDescription {
  std::string_view name;
  /// A bit for each kind of record that has it: KindBit().
  unsigned kinds;
  std::string_view meaning;
};

constexpr unsigned KindBit(Kind kind) { return 1u << static_cast<unsigned>(kind); }

/// One for each of Members(), in the same order.
const std::vector<MemberDescription>& MemberDescriptions();

/// The kinds of records that have it: "all", or "service, device".
std::string KindsText(const MemberDescription& member);

/// "text", "version", "number", "time", "date", "flag" or "texts".
std::string_view TypeName(ValueType type);

}  // namespace inventory
