#include "comparison.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "insertionsort.h"
#include "versions.h"

namespace driverlist {
namespace {

using Orvane::DriverData;

struct ComparedField {
  const char* name;
  std::string DriverData::*member;
};

constexpr std::array<ComparedField, 6> ComparedFields = {{{"provider", &DriverData::provider},
                                                          {"path", &DriverData::path},
                                                          {"file_version", &DriverData::file_version},
                                                          {"state", &DriverData::state},
                                                          {"start_type", &DriverData::start_type},
                                                          {"size", &DriverData::size}}};

std::vector<FieldChange> Changes(const DriverData& before, const DriverData& after) {
  std::vector<FieldChange> changes;
  for (const auto& [name, member] : ComparedFields) {
    if (before.*member != after.*member) changes.push_back({name, before.*member, after.*member});
  }
  return changes;
}

DifferenceKind KindOf(const std::string& before, const std::string& after) {
  if (!IsKnownVersion(before) || !IsKnownVersion(after)) return DifferenceKind::Changed;
  if (IsOlder(before, after)) return DifferenceKind::Upgraded;
  return IsOlder(after, before) ? DifferenceKind::Downgraded : DifferenceKind::Changed;
}

using Identity = std::pair<std::string, FoundBy>;

/// The records of one identity that have no partner yet.
struct Sides {
  std::vector<const DriverData*> before;
  std::vector<const DriverData*> after;
};

/// Compares what has one identity.
class Group {
 public:
  Group(const Identity& identity, Sides sides, Comparison& comparison)
      : m_identity(identity), m_sides(std::move(sides)), m_comparison(comparison) {}

  void Compare() {
    PairWhere([](const DriverData& a, const DriverData& b) { return Changes(a, b).empty(); });
    PairWhere([](const DriverData& a, const DriverData& b) { return a.path == b.path && !a.path.empty(); });
    for (auto* const side : {&m_sides.before, &m_sides.after}) {
      InsertionSort(*side,
                    [](const DriverData* a, const DriverData* b) { return IsOlder(b->file_version, a->file_version); });
    }
    PairWhere([](const DriverData&, const DriverData&) { return true; });
    for (const DriverData* const driver : m_sides.before) {
      Add(DifferenceKind::Removed, {{"file_version", driver->file_version, std::string()}});
    }
    for (const DriverData* const driver : m_sides.after) {
      Add(DifferenceKind::Added, {{"file_version", std::string(), driver->file_version}});
    }
  }

 private:
  /// Takes out pairs for which `belong` holds, the first that fits each time.
  template <typename Belong>
  void PairWhere(Belong belong) {
    std::vector<const DriverData*> alone;
    for (const DriverData* const driver : m_sides.before) {
      const auto partner = std::find_if(m_sides.after.begin(), m_sides.after.end(),
                                        [&](const DriverData* other) { return belong(*driver, *other); });
      if (partner == m_sides.after.end()) {
        alone.push_back(driver);
        continue;
      }
      AddPair(*driver, **partner);
      m_sides.after.erase(partner);
    }
    m_sides.before = std::move(alone);
  }

  void AddPair(const DriverData& before, const DriverData& after) {
    std::vector<FieldChange> changes = Changes(before, after);
    if (changes.empty()) {
      ++m_comparison.same;
    } else {
      Add(KindOf(before.file_version, after.file_version), std::move(changes));
    }
  }

  void Add(DifferenceKind kind, std::vector<FieldChange> changes) {
    m_comparison.differences.push_back({kind, m_identity.second, m_identity.first, std::move(changes)});
  }

  const Identity& m_identity;
  Sides m_sides;
  Comparison& m_comparison;
};

}  // namespace

std::string DifferenceName(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::Added:
      return "added";
    case DifferenceKind::Removed:
      return "removed";
    case DifferenceKind::Upgraded:
      return "upgraded";
    case DifferenceKind::Downgraded:
      return "downgraded";
    case DifferenceKind::Changed:
      break;
  }
  return "changed";
}

Comparison Compare(const std::vector<InventoryRecord>& before, const std::vector<InventoryRecord>& after) {
  std::map<Identity, Sides> groups;
  for (const auto& record : before) groups[{record.driver.name, record.foundBy}].before.push_back(&record.driver);
  for (const auto& record : after) groups[{record.driver.name, record.foundBy}].after.push_back(&record.driver);
  Comparison comparison;
  for (auto& [identity, sides] : groups) Group(identity, std::move(sides), comparison).Compare();
  return comparison;
}

}  // namespace driverlist
