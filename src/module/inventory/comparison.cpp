#include "inventory/comparison.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "inventory/filenames.h"
#include "inventory/ignoringcase.h"
#include "inventory/listing.h"
#include "inventory/predicates.h"
#include "inventory/schema1.h"
#include "inventory/versionkey.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

using Orvane::LowerCase;

// --- Orders. The result is below, at or above 0, as with strcmp().

template <typename T>
int Order(const T& a, const T& b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}

int OrderTexts(const std::string& a, const std::string& b, bool ignoresCase) {
  return ignoresCase ? CompareIgnoringCase(a, b) : a.compare(b);
}

int OrderTexts(const std::vector<std::string>& a, const std::vector<std::string>& b, bool ignoresCase) {
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    if (const int order = OrderTexts(a[i], b[i], ignoresCase)) return order;
  }
  return Order(a.size(), b.size());
}

int OrderByMember(const Record& a, const Record& b, const Member& member) {
  return std::visit(
      [&](auto source) {
        if constexpr (!std::is_member_pointer_v<decltype(source)>) {
          return Order(source(a), source(b));
        } else if constexpr (std::is_same_v<decltype(source), std::string Record::*> ||
                             std::is_same_v<decltype(source), std::vector<std::string> Record::*>) {
          return OrderTexts(a.*source, b.*source, member.ignoresCase);
        } else {
          return Order(a.*source, b.*source);
        }
      },
      member.source);
}

int OrderByMembers(const Record& a, const Record& b) {
  for (const Member& member : Members()) {
    if (!member.isCompared) continue;
    if (const int order = OrderByMember(a, b, member)) return order;
  }
  return 0;
}

/// Whether both records know the member and their values differ. Not usable for ordering: the first and the last of
/// three records can differ although neither differs from the one in between, which does not know the member.
bool DiffersWhereKnown(const Record& a, const Record& b, const Member& member) {
  if (!member.isComparedIfKnown || (member.isComparedInSameVersion && a.version != b.version)) return false;
  const Value before = ValueOf(a, member);
  const Value after = ValueOf(b, member);
  const bool isKnown =
      !std::holds_alternative<std::monostate>(before) && !std::holds_alternative<std::monostate>(after);
  return isKnown && TextOf(before) != TextOf(after);
}

bool DiffersWhereKnown(const Record& a, const Record& b) {
  return std::any_of(Members().begin(), Members().end(),
                     [&](const Member& member) { return DiffersWhereKnown(a, b, member); });
}

bool Differs(const Record& a, const Record& b, const Member& member) {
  return (member.isCompared && OrderByMember(a, b, member) != 0) || DiffersWhereKnown(a, b, member);
}

int OrderNewestFirst(const Record& a, const Record& b) {
  return a.version == b.version ? 0 : VersionKey(b.version).compare(VersionKey(a.version));
}

/// The values that identify a record of one schema.
class Keys {
 public:
  explicit Keys(unsigned schema) : m_schema(schema) {}

  const std::string& TextOf(const Record& record) const { return m_schema == 1 ? record.name : KeyTextOf(record); }

  int Order(const Record& a, const Record& b) const {
    if (a.kind != b.kind) return a.kind < b.kind ? -1 : 1;
    return CompareIgnoringCase(TextOf(a), TextOf(b));
  }

 private:
  unsigned m_schema;
};

// --- Partners

using Refs = std::vector<const Record*>;

/// The records of both inventories that have no partner yet.
struct Sides {
  Refs before;
  Refs after;
};

/// Takes pairs out of `sides`: among records that are equal by `order`, the newest of one side goes with the newest of
/// the other, and so on. If `mayPair` does not hold for two records, both stay.
template <typename Order, typename MayPair, typename OnPair>
void TakePairs(Sides& sides, Order order, MayPair mayPair, OnPair onPair) {
  for (Refs* const side : {&sides.before, &sides.after}) {
    std::stable_sort(side->begin(), side->end(), [&order](const Record* a, const Record* b) {
      const int ordered = order(*a, *b);
      return ordered != 0 ? ordered < 0 : OrderNewestFirst(*a, *b) < 0;
    });
  }
  auto before = sides.before.begin();
  auto after = sides.after.begin();
  // Records that stay move to the front of their side.
  auto beforeEnd = before;
  auto afterEnd = after;
  while (before != sides.before.end() && after != sides.after.end()) {
    const int ordered = order(**before, **after);
    if (ordered == 0 && mayPair(**before, **after)) {
      onPair(**before++, **after++);
      continue;
    }
    if (ordered <= 0) *beforeEnd++ = *before++;
    if (ordered >= 0) *afterEnd++ = *after++;
  }
  sides.before.erase(std::move(before, sides.before.end(), beforeEnd), sides.before.end());
  sides.after.erase(std::move(after, sides.after.end(), afterEnd), sides.after.end());
}

DifferenceKind KindOf(const Record& before, const Record& after) {
  if (before.version == after.version) return DifferenceKind::Changed;
  if (!IsKnownVersion(before.version) || !IsKnownVersion(after.version)) return DifferenceKind::Changed;
  if (IsOlder(before.version, after.version)) return DifferenceKind::Upgraded;
  return IsOlder(after.version, before.version) ? DifferenceKind::Downgraded : DifferenceKind::Changed;
}

int OrderByAll(const Record& a, const Record& b, const Keys& keys) {
  const int order = keys.Order(a, b);
  return order != 0 ? order : OrderByMembers(a, b);
}

/// Finds partners for the records that have no identical one on the other side, the most certain pairs first.
void FindDifferences(Sides sides, const Keys& keys, std::vector<Difference>& differences) {
  const auto differ = [&differences](const Record& before, const Record& after) {
    differences.push_back({KindOf(before, after), &before, &after});
  };
  const auto byKey = [&keys](const Record& a, const Record& b) { return keys.Order(a, b); };

  const auto byKeyAndPlace = [&keys](const Record& a, const Record& b) {
    if (const int order = keys.Order(a, b)) return order;
    const int order = CompareIgnoringCase(a.path, b.path);
    return order != 0 ? order : CompareIgnoringCase(a.original_inf, b.original_inf);
  };
  const auto hasPlace = [](const Record& a, const Record&) { return !a.path.empty() || !a.original_inf.empty(); };
  TakePairs(sides, byKeyAndPlace, hasPlace, differ);

  const auto byOriginalName = [](const Record& a, const Record& b) {
    const int order = Order(a.kind, b.kind);
    return order != 0 ? order : CompareIgnoringCase(a.original_inf, b.original_inf);
  };
  const auto hasOriginalName = [](const Record& a, const Record&) { return !a.original_inf.empty(); };
  TakePairs(sides, byOriginalName, hasOriginalName, differ);

  // Packages with different original names are different packages, even if Windows published both under the same name.
  const auto mayBeOne = [](const Record& a, const Record& b) {
    return a.original_inf.empty() || b.original_inf.empty();
  };
  TakePairs(sides, byKey, mayBeOne, differ);

  for (const Record* const record : sides.before) differences.push_back({DifferenceKind::Removed, record, nullptr});
  for (const Record* const record : sides.after) differences.push_back({DifferenceKind::Added, nullptr, record});
}

// --- Groups

/// Links the records of one inventory to the differences of packages, which are given by their positions. Keys are in
/// lower case.
class Links {
 public:
  void AddPackage(const Record& package, std::size_t difference) {
    Add(m_byInf, LowerCase(package.inf), difference);
    for (const std::string& file : package.files) Add(m_byFile, FileKey(file), difference);
  }

  void AddDevice(const Record& device, std::size_t difference) {
    Add(m_byService, LowerCase(device.service), difference);
  }

  /// The difference of the package that the device or service belongs to; null if there is no such package.
  const std::size_t* Find(const Record& record) const {
    if (IsDevice(record)) return Find(m_byInf, LowerCase(record.inf));
    if (!IsService(record)) return nullptr;
    const std::size_t* const ofDevice = Find(m_byService, LowerCase(record.service));
    return ofDevice != nullptr ? ofDevice : Find(m_byFile, FileKey(record.path));
  }

 private:
  using Differences = std::unordered_map<std::string, std::size_t>;

  /// If there are several, the first one is kept.
  static void Add(Differences& differences, std::string key, std::size_t difference) {
    if (!key.empty()) differences.emplace(std::move(key), difference);
  }
  static const std::size_t* Find(const Differences& differences, const std::string& key) {
    const auto found = differences.find(key);
    return found == differences.end() ? nullptr : &found->second;
  }

  Differences m_byInf;
  Differences m_byFile;
  Differences m_byService;
};

/// For each difference, the position of the one that leads its group.
std::vector<std::size_t> Leaders(const std::vector<Difference>& differences) {
  Links before;
  Links after;
  std::vector<std::size_t> leaders(differences.size());
  const auto forEach = [&differences](bool (*isOfKind)(const Record&), auto action) {
    for (std::size_t i = 0; i < differences.size(); ++i) {
      if (isOfKind(differences[i].Latest())) action(i, differences[i]);
    }
  };
  const auto find = [&](const Difference& difference) {
    const std::size_t* leader = difference.after != nullptr ? after.Find(*difference.after) : nullptr;
    if (leader == nullptr && difference.before != nullptr) leader = before.Find(*difference.before);
    return leader;
  };
  for (std::size_t i = 0; i < leaders.size(); ++i) leaders[i] = i;
  forEach(&IsPackage, [&](std::size_t i, const Difference& package) {
    if (package.before != nullptr) before.AddPackage(*package.before, i);
    if (package.after != nullptr) after.AddPackage(*package.after, i);
  });
  forEach(&IsDevice, [&](std::size_t i, const Difference& device) {
    const std::size_t* const leader = find(device);
    if (leader == nullptr) return;
    leaders[i] = *leader;
    if (device.before != nullptr) before.AddDevice(*device.before, *leader);
    if (device.after != nullptr) after.AddDevice(*device.after, *leader);
  });
  forEach(&IsService, [&](std::size_t i, const Difference& service) {
    if (const std::size_t* const leader = find(service)) leaders[i] = *leader;
  });
  return leaders;
}

void FormGroups(std::vector<Difference>& differences, const Keys& keys) {
  const std::vector<std::size_t> leaders = Leaders(differences);
  std::vector<std::size_t> order(differences.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  const auto byKey = [&](std::size_t a, std::size_t b) {
    return keys.Order(differences[a].Latest(), differences[b].Latest());
  };
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    if (leaders[a] != leaders[b]) {
      const int ordered = byKey(leaders[a], leaders[b]);
      return ordered != 0 ? ordered < 0 : leaders[a] < leaders[b];
    }
    if (a == leaders[a] || b == leaders[b]) return a == leaders[a] && b != leaders[b];
    return byKey(a, b) < 0;
  });
  std::vector<Difference> grouped;
  grouped.reserve(differences.size());
  std::size_t group = 0;
  for (const std::size_t i : order) {
    if (i == leaders[i]) ++group;
    grouped.push_back(differences[i]);
    grouped.back().group = group;
  }
  differences = std::move(grouped);
}

void ReduceToSchema1(Inventory& inventory) {
  if (inventory.schema == 1) return;
  inventory.records = AsSchema1(inventory.records);
  inventory.schema = 1;
}

bool IsAnotherVersion(const Difference& difference) {
  return difference.kind == DifferenceKind::Upgraded || difference.kind == DifferenceKind::Downgraded;
}

/// What the group [begin, end) counts as. Windows keeps the older package after an update, so the newer one shows as
/// added; that it is an update shows in the devices and services.
template <typename Iterator>
DifferenceKind KindOfGroup(Iterator begin, Iterator end) {
  const bool cameOrWent = begin->kind == DifferenceKind::Added || begin->kind == DifferenceKind::Removed;
  const auto updated = std::find_if(begin, end, &IsAnotherVersion);
  return cameOrWent && updated != end ? updated->kind : begin->kind;
}

constexpr std::array<std::string_view, 5> DifferenceNames = {"added", "removed", "upgraded", "downgraded", "changed"};

}  // namespace

std::string_view DifferenceName(DifferenceKind kind) { return DifferenceNames[static_cast<std::size_t>(kind)]; }

std::vector<Change> ChangesOf(const Difference& difference) {
  const auto [kind, before, after, group] = difference;
  const bool isPair = before != nullptr && after != nullptr;
  std::vector<Change> changes;
  for (const Member& member : Members()) {
    if (isPair && Differs(*before, *after, member)) {
      changes.push_back({&member, ValueOf(*before, member), ValueOf(*after, member)});
    }
    if (isPair || !member.introduces) continue;
    Value value = ValueOf(difference.Latest(), member);
    if (std::holds_alternative<std::monostate>(value)) continue;
    changes.push_back({&member, before != nullptr ? value : Value(), after != nullptr ? value : Value()});
  }
  return changes;
}

std::size_t Comparison::GroupsOf(DifferenceKind kind) const {
  std::size_t groups = 0;
  for (auto begin = differences.begin(); begin != differences.end();) {
    const auto end = std::find_if(begin, differences.end(),
                                  [&begin](const Difference& difference) { return difference.group != begin->group; });
    if (KindOfGroup(begin, end) == kind) ++groups;
    begin = end;
  }
  return groups;
}

std::string Comparison::KeyOf(const Difference& difference) const {
  return LowerCase(Keys(before.schema).TextOf(difference.Latest()));
}

Comparison Compare(Inventory before, Inventory after) { return Comparer(std::move(before)).Compare(std::move(after)); }

Comparer::Comparer(Inventory before) {
  m_comparison.before = std::move(before);
  Sort();
}

void Comparer::Sort() {
  const Keys keys(m_comparison.before.schema);
  m_sorted.clear();
  m_sorted.reserve(m_comparison.before.records.size());
  for (const Record& record : m_comparison.before.records) m_sorted.push_back(&record);
  std::stable_sort(m_sorted.begin(), m_sorted.end(),
                   [&keys](const Record* a, const Record* b) { return OrderByAll(*a, *b, keys) < 0; });
  m_settled.assign(m_sorted.size(), 0);
}

bool Comparer::Settle(const Record& record, unsigned schema) {
  if (schema != m_comparison.before.schema) return false;
  const Keys keys(schema);
  const auto first =
      std::lower_bound(m_sorted.begin(), m_sorted.end(), &record,
                       [&keys](const Record* a, const Record* b) { return OrderByAll(*a, *b, keys) < 0; });
  if (first == m_sorted.end()) return false;
  std::size_t& settled = m_settled[static_cast<std::size_t>(first - m_sorted.begin())];
  if (settled == static_cast<std::size_t>(m_sorted.end() - first)) return false;
  const Record& partner = **(first + static_cast<std::ptrdiff_t>(settled));
  if (OrderByAll(partner, record, keys) != 0 || DiffersWhereKnown(partner, record)) return false;
  ++settled;
  ++m_comparison.same;
  return true;
}

std::vector<const Record*> Comparer::Unsettled() const {
  Refs unsettled;
  std::size_t settled = 0;
  for (std::size_t i = 0; i < m_sorted.size(); ++i) {
    settled += m_settled[i];
    if (settled == 0) {
      unsettled.push_back(m_sorted[i]);
    } else {
      --settled;
    }
  }
  return unsettled;
}

Comparison Comparer::Compare(Inventory after) {
  m_comparison.after = std::move(after);
  Inventory& earlier = m_comparison.before;
  Inventory& later = m_comparison.after;
  if (earlier.schema != later.schema) {
    ReduceToSchema1(earlier);
    ReduceToSchema1(later);
    Sort();
  }
  Refs unsettled;
  for (const Record& record : later.records) {
    if (!Settle(record, later.schema)) unsettled.push_back(&record);
  }
  const Keys keys(later.schema);
  FindDifferences({Unsettled(), std::move(unsettled)}, keys, m_comparison.differences);
  FormGroups(m_comparison.differences, keys);
  return std::move(m_comparison);
}

}  // namespace inventory
