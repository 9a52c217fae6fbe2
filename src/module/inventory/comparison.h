/// @file
/// What differs between two inventories of a machine.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/inventory.h"
#include "inventory/members.h"

namespace inventory {

enum class DifferenceKind { Added, Removed, Upgraded, Downgraded, Changed };

constexpr std::array<DifferenceKind, 5> DifferenceKinds = {DifferenceKind::Added, DifferenceKind::Removed,
                                                           DifferenceKind::Upgraded, DifferenceKind::Downgraded,
                                                           DifferenceKind::Changed};

/// "added", "removed", "upgraded", "downgraded" or "changed".
std::string_view DifferenceName(DifferenceKind kind);

/// A record that only one inventory has, or that differs between them. The records are those of the Comparison.
struct Difference {
  DifferenceKind kind = DifferenceKind::Changed;
  /// Null when it was added.
  const Record* before = nullptr;
  /// Null when it was removed.
  const Record* after = nullptr;
  /// From 1. Differences of one group follow each other; that of the package is the first.
  std::size_t group = 0;

  /// The record as it was last seen.
  const Record& Latest() const { return after != nullptr ? *after : *before; }
};

/// A member that differs. No value where there is none.
struct Change {
  const Member* member;
  Value before;
  Value after;
};

/// The compared members that differ, in the order of members; of a record that only one inventory has, those that
/// introduce it.
std::vector<Change> ChangesOf(const Difference& difference);

/// The inventories and what differs.
struct Comparison {
  Comparison() = default;
  Comparison(Comparison&&) = default;
  Comparison& operator=(Comparison&&) = default;

  Inventory before;
  /// Without the records that were settled beforehand; see Comparer.
  Inventory after;
  /// Group by group, ordered by kind and key of each group's first record; within a group by kind and key behind the
  /// package.
  std::vector<Difference> differences;
  /// Records that are in both without a difference.
  std::size_t same = 0;

  /// How many groups are of that kind: that of their first difference, or, where that is a package that only came or
  /// went, that of the first device or service with another version.
  std::size_t GroupsOf(DifferenceKind kind) const;
  /// What the record of `difference` was found by, in lower case.
  std::string KeyOf(const Difference& difference) const;
};

/// Compares two inventories of a machine, in time that grows as n log n.
///
/// A record is the same in both when its kind and its key are. A package whose published name Windows gave to another
/// one counts by the name under which it was delivered: of packages that have no partner under their own name, those
/// delivered under one name are the same, from the newest on. Where several records have one key, those without any
/// difference belong together, then those with one path, then, from the newest on, those that are left.
///
/// Compared are the members whose isCompared or isComparedIfKnown is set, ignoring case where Windows does. A signer or
/// a state of a signature makes a difference only where both inventories were verified, and so does the hash of an
/// image, whose version must be the same besides. Another version is an upgrade or a downgrade by IsOlder(), and a
/// change where one of the two is unknown or that order does not tell them apart.
///
/// The update of a package is one group with
/// - the differences of devices that are, or were, installed from it;
/// - the differences of services that such a device names, or whose image is among the files of the package.
/// Every other difference is a group of its own.
///
/// Where one inventory is of schema 1, both are compared as schema 1 would have recorded them (AsSchema1()): records
/// are the same whose kind and name are, ignoring case, compared are Schema1Members(), and each difference is a group
/// of its own. What schema 1 does not know makes no difference then: Windows' own packages, services without image, how
/// many devices share a name. A service whose image the library did not find is added.
Comparison Compare(Inventory before, Inventory after);

/// Compares like Compare(), with no need of both inventories in memory: records of the later one that are the same can
/// be let go while it is read.
class Comparer {
 public:
  explicit Comparer(Inventory before);
  Comparer(const Comparer&) = delete;
  Comparer& operator=(const Comparer&) = delete;

  /// Whether `record`, of an inventory of `schema`, is in the earlier inventory without a difference. The two are
  /// partners then, and `record` must not be among those that Compare() gets.
  bool Settle(const Record& record, unsigned schema);

  /// Compares with the rest of the later inventory. Once.
  Comparison Compare(Inventory after);

 private:
  void Sort();
  std::vector<const Record*> Unsettled() const;

  Comparison m_comparison;
  /// The earlier records by key and compared members. Of equal ones the first are settled: how many is said at the
  /// position of the very first.
  std::vector<const Record*> m_sorted;
  std::vector<std::size_t> m_settled;
};

}  // namespace inventory
