/// @file
/// What a handle refers to.
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

/// How hosts get the values of a member.
enum class MemberType { Text = 1, Number, Flag, Texts };

MemberType TypeOf(const inventory::Member& member);

struct DerivedPlaces;

/// A finished inventory. Nothing of it changes, so any thread may read it. What it returns lives as long as it does;
/// null is no value.
class Contents {
 public:
  explicit Contents(inventory::Inventory&& inventory);
  Contents(const Contents&) = delete;
  Contents& operator=(const Contents&) = delete;

  const inventory::Inventory& Get() const { return m_inventory; }
  std::size_t Count() const { return m_inventory.records.size(); }

  /// `record` is below Count(), and each function is for members of its type alone.
  const std::string* Text(std::size_t record, const inventory::Member& member) const;
  std::optional<std::uint64_t> Number(std::size_t record, const inventory::Member& member) const;
  const std::vector<std::string>& Texts(std::size_t record, const inventory::Member& member) const;

 private:
  inventory::Inventory m_inventory;
  const DerivedPlaces& m_places;
  /// The texts that follow from others: record by record, those of one record in the order of members.
  std::vector<std::string> m_derived;
};

}  // namespace flat
