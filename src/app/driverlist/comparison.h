/// @file
/// What differs between two inventories.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "inventory.h"

namespace driverlist {

enum class DifferenceKind { Added, Removed, Upgraded, Downgraded, Changed };

/// "added", "removed", "upgraded", "downgraded" or "changed".
std::string DifferenceName(DifferenceKind kind);

struct FieldChange {
  std::string field;
  std::string before;
  std::string after;
};

struct Difference {
  DifferenceKind kind;
  FoundBy foundBy;
  std::string name;
  /// The fields that differ, in the order of the record; of a driver that was added or removed, its version alone.
  std::vector<FieldChange> changes;
};

struct Comparison {
  /// Ordered by name, then by who found the driver.
  std::vector<Difference> differences;
  /// Drivers that are in both as they are.
  std::size_t same = 0;
};

/// Compares two inventories. A driver is the same in both when its name and the listing that found it are.
///
/// Where one inventory has several of them (services that share a file name), those equal in all compared fields belong
/// together, then those with one path, then, from the newest on, those that are left.
///
/// Compared are version, state, start type, path, provider and size. Another version is an upgrade or a downgrade by IsOlder(),
/// and a change where one of the two is not known or the order does not tell them apart.
Comparison Compare(const std::vector<InventoryRecord>& before, const std::vector<InventoryRecord>& after);

}  // namespace driverlist
