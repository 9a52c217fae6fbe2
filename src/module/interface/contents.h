/// @file
/// The object behind a handle.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/inventory.h"
#include "inventory/members.h"

namespace flat {

/// The way in which hosts get the values of a member.
enum class MemberType { Text = 1, Number, Flag, Texts };

MemberType TypeOf(const inventory::Member& member);

struct DerivedPlaces;

/// A finished inventory. It never changes, so any thread may read it. The pointers that it returns live as long as it
/// does; null means no value.
class Contents {
 public:
  explicit Contents(inventory::Inventory&& inventory);
  Contents(const Contents&) = delete;
  Contents& operator=(const Contents&) = delete;

  const inventory::Inventory& Get() const { return m_inventory; }
  std::size_t Count() const { return m_inventory.records.size(); }

  /// `record` is below Count(). Each function is only for members of its type.
  const std::string* Text(std::size_t record, const inventory::Member& member) const;
  std::optional<std::uint64_t> Number(std::size_t record, const inventory::Member& member) const;
  const std::vector<std::string>& Texts(std::size_t record, const inventory::Member& member) const;

 private:
  inventory::Inventory m_inventory;
  const DerivedPlaces& m_places;
  /// The texts that are derived from others, record by record; within a record in the order of members.
  std::vector<std::string> m_derived;
};

}  // namespace flat
