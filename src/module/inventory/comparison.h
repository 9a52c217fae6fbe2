/// @file
/// The differences between two inventories of a machine.
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
  /// Null if it was added.
  const Record* before = nullptr;
  /// Null if it was removed.
  const Record* after = nullptr;
  /// Counted from 1. Differences of one group follow each other; the difference of the package is the first.
  std::size_t group = 0;

  /// The record as it was last seen.
  const Record& Latest() const { return after != nullptr ? *after : *before; }
};

/// A member that differs. Either side may have no value.
struct Change {
  const Member* member;
  Value before;
  Value after;
};

/// The compared members that differ, in the order of members; for a record that only one inventory has, the members
/// that introduce it.
std::vector<Change> ChangesOf(const Difference& difference);

/// The inventories and their differences.
struct Comparison {
  Comparison() = default;
  Comparison(Comparison&&) = default;
  Comparison& operator=(Comparison&&) = default;

  Inventory before;
  /// Without the records that were settled beforehand; see Comparer.
  Inventory after;
  /// Group by group, ordered by kind and key of the first record of each group; within a group, after the package, by
  /// kind and key.
  std::vector<Difference> differences;
  /// The number of records that are the same in both.
  std::size_t same = 0;

  /// The number of groups of that kind. The kind of a group is that of its first difference; if this is a package that
  /// was only added or removed, it is that of the first device or service with another version.
  std::size_t GroupsOf(DifferenceKind kind) const;
  /// The key of the record of `difference`, in lower case.
  std::string KeyOf(const Difference& difference) const;
};

/// Compares two inventories of a machine in O(n log n).
///
/// Two records are the same if their kind and their key are equal. Windows may give the published name of a package to
/// another package. Therefore packages without a partner under their published name are matched by the name under which
/// they were delivered, the newest first. If several records have the same key, records without any difference are
/// matched first, then records with the same path, then the remaining ones, the newest first.
///
/// The compared members are those whose isCompared or isComparedIfKnown is set; case is ignored where Windows ignores
/// it. Signers, signature states and image hashes are compared only if both inventories were verified, and image hashes
/// only if the versions are equal. A different version is an upgrade or a downgrade according to IsOlder(), or a change
/// if one of the two is unknown or IsOlder() considers neither older.
///
/// The update of a package is one group with
/// - the differences of devices that are, or were, installed from it;
/// - the differences of services that such a device names, or whose image is among the files of the package.
/// Every other difference is a group of its own.
///
/// If one inventory has schema 1, both are compared as schema 1 would have recorded them (AsSchema1()): records are the
/// same if their kind and name are equal, ignoring case; only Schema1Members() are compared; each difference is a group
/// of its own. Things that schema 1 does not record then make no difference: the packages of Windows itself, services
/// without an image, the number of devices that share a name. A service whose image the library did not find counts as
/// added.
Comparison Compare(Inventory before, Inventory after);

/// Compares like Compare() without having both inventories in memory: unchanged records of the later inventory can be
/// dropped while it is read.
class Comparer {
 public:
  explicit Comparer(Inventory before);
  Comparer(const Comparer&) = delete;
  Comparer& operator=(const Comparer&) = delete;

  /// Whether `record`, from an inventory of `schema`, is in the earlier inventory without a difference. If so, the two
  /// are matched, and `record` must not be passed to Compare().
  bool Settle(const Record& record, unsigned schema);

  /// Compares with the rest of the later inventory. Call it only once.
  Comparison Compare(Inventory after);

 private:
  void Sort();
  std::vector<const Record*> Unsettled() const;

  Comparison m_comparison;
  /// The earlier records by key and compared members. Of equal records, the first ones are settled; their number is
  /// stored at the position of the very first.
  std::vector<const Record*> m_sorted;
  std::vector<std::size_t> m_settled;
};

}  // namespace inventory
