#include "uniquedrivers.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "platform/logline.h"

namespace Orvane {
namespace {

/// A record and the key that it is ordered by. Sorting these moves 32 bytes each instead of the 416 of a record.
struct Entry {
  /// Eight bytes of the name, the first one most significant. Most comparisons end here, without reading the names,
  /// which are scattered over memory.
  std::uint64_t key;
  std::string_view name;
  DriverData* driver;
};

using Entries = std::vector<Entry>;

bool IsBefore(const Entry& a, const Entry& b) { return a.key != b.key ? a.key < b.key : a.name < b.name; }

/// The length of the prefix that all names share.
std::size_t CommonPrefix(const Entries& entries) {
  if (entries.empty()) return 0;
  const std::string_view first = entries.front().name;
  std::size_t common = first.size();
  for (const Entry& entry : entries) {
    common = std::min(common, entry.name.size());
    const auto end = first.begin() + static_cast<std::ptrdiff_t>(common);
    common = static_cast<std::size_t>(std::mismatch(first.begin(), end, entry.name.begin()).first - first.begin());
    if (common == 0) break;
  }
  return common;
}

/// Eight bytes of `name` from `begin` on, filled up with zeros: if two names are equal up to `begin`, the key of the
/// lesser name is not greater than the key of the other.
std::uint64_t Key(std::string_view name, std::size_t begin) {
  std::uint64_t key = 0;
  for (std::size_t i = begin; i < begin + sizeof(key); ++i) {
    key = key << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0u);
  }
  return key;
}

void SortByName(Entries& entries) {
  const std::size_t common = CommonPrefix(entries);
  for (Entry& entry : entries) entry.key = Key(entry.name, common);
  // By name only, and then the oldest of each name: the order of versions is not transitive (1g is before 9, 9 before
  // 10, 10 before 1g), so a sort by operator< itself might read outside its range. The records kept are the same.
  std::sort(entries.begin(), entries.end(), &IsBefore);
}

/// Keeps the oldest entry of each name; the entries are sorted.
void KeepOldest(Entries& entries) {
  auto kept = entries.begin();
  for (auto run = entries.begin(); run != entries.end();) {
    const auto runEnd = std::find_if(
        run + 1, entries.end(), [run](const Entry& entry) { return entry.key != run->key || entry.name != run->name; });
    *kept++ = *std::min_element(run, runEnd, [](const Entry& a, const Entry& b) { return *a.driver < *b.driver; });
    run = runEnd;
  }
  entries.erase(kept, entries.end());
}

/// The oldest record of each name, in order.
std::vector<DriverData*> Unique(Entries entries) {
  SortByName(entries);
  ORVANE_LOG(4) << "driverlist size before erase unique:" << std::to_string(entries.size());
  KeepOldest(entries);
  std::vector<DriverData*> unique;
  unique.reserve(entries.size());
  for (const Entry& entry : entries) unique.push_back(entry.driver);
  return unique;
}

/// Moves records into a vector that has no spare room.
std::vector<DriverData> Take(const std::vector<DriverData*>& drivers) {
  std::vector<DriverData> taken;
  taken.reserve(drivers.size());
  for (DriverData* const driver : drivers) taken.push_back(std::move(*driver));
  return taken;
}

void LogUnique(const std::vector<DriverData>& drivers) {
  ORVANE_LOG(4) << "driverlist size after erase unique:" << std::to_string(drivers.size());
}

/// Finds a device by its name. A table of its own, because one of the standard library would allocate memory for each
/// name.
class DeviceNames {
 public:
  explicit DeviceNames(const std::vector<DriverData>& devices) : m_devices(devices) {
    std::size_t size = 2;
    while (size < 2 * devices.size()) size *= 2;
    m_slots.resize(size);
    for (std::size_t i = 0; i < devices.size(); ++i) {
      const std::size_t hash = Hash(devices[i].name);
      m_slots[SlotOf(devices[i].name, hash)] = {hash, i};
    }
  }

  /// The position of the device; None if no device has that name.
  std::size_t Find(std::string_view name) const { return m_slots[SlotOf(name, Hash(name))].device; }

  static constexpr std::size_t None = std::numeric_limits<std::size_t>::max();

 private:
  struct Slot {
    std::size_t hash = 0;
    std::size_t device = None;
  };

  static std::size_t Hash(std::string_view name) { return std::hash<std::string_view>()(name); }

  /// The slot of `name`, or the free slot where it belongs. At least half of the slots are free.
  std::size_t SlotOf(std::string_view name, std::size_t hash) const {
    std::size_t slot = hash;
    for (;; ++slot) {
      const Slot& candidate = m_slots[slot & (m_slots.size() - 1)];
      if (candidate.device == None || (candidate.hash == hash && m_devices[candidate.device].name == name)) break;
    }
    return slot & (m_slots.size() - 1);
  }

  const std::vector<DriverData>& m_devices;
  std::vector<Slot> m_slots;
};

/// A record of the other sources that has the name of a device record, both by their positions.
struct Shadowed {
  std::size_t device;
  std::size_t driver;
};

/// In the order of `drivers`.
std::vector<Shadowed> FindShadowed(const std::vector<DriverData>& devices, const std::vector<DriverData>& drivers) {
  const DeviceNames names(devices);
  std::vector<Shadowed> shadowed;
  for (std::size_t i = 0; i < drivers.size(); ++i) {
    const std::size_t device = names.Find(drivers[i].name);
    if (device != DeviceNames::None) shadowed.push_back({device, i});
  }
  return shadowed;
}

/// In the order of the device records, and for each of them in the order of `drivers`.
void LogShadowed(std::vector<Shadowed> allShadowed, const std::vector<DriverData>& drivers) {
  std::sort(allShadowed.begin(), allShadowed.end(), [](const Shadowed& a, const Shadowed& b) {
    return a.device != b.device ? a.device < b.device : a.driver < b.driver;
  });
  for (const Shadowed& shadowed : allShadowed) {
    const DriverData& driver = drivers[shadowed.driver];
    // The line says "version" but shows the size; readers of the log expect it.
    ORVANE_LOG(3) << driver.name << "; version=" << driver.size << " already found by device.";
  }
}

}  // namespace

void SortAndRemoveDuplicates(std::vector<DriverData>& drivers) {
  Entries entries;
  entries.reserve(drivers.size());
  for (DriverData& driver : drivers) entries.push_back({0, driver.name, &driver});
  // Comparing versions may run out of memory, moving records may not: decide first, then move, so that no record is
  // lost. These are two statements because the entries live until the end of the first.
  const std::vector<DriverData*> unique = Unique(std::move(entries));
  drivers = Take(unique);
  LogUnique(drivers);
}

void MergeDevices(std::vector<DriverData> devices, std::vector<DriverData>& drivers) {
  // A vector that doubled may have much spare room. It is given back, so that the listing needs little more memory than
  // its result and the caches.
  if (drivers.capacity() > drivers.size() + drivers.size() / 16) drivers.shrink_to_fit();
  const std::vector<Shadowed> shadowed = FindShadowed(devices, drivers);
  Entries entries;
  entries.reserve(drivers.size() - shadowed.size() + devices.size());
  auto next = shadowed.begin();
  for (std::size_t i = 0; i < drivers.size(); ++i) {
    const bool isShadowed = next != shadowed.end() && next->driver == i;
    if (isShadowed) {
      ++next;
    } else {
      entries.push_back({0, drivers[i].name, &drivers[i]});
    }
  }
  for (DriverData& device : devices) entries.push_back({0, device.name, &device});
  LogShadowed(shadowed, drivers);
  const std::vector<DriverData*> unique = Unique(std::move(entries));
  drivers = Take(unique);
  LogUnique(drivers);
}

}  // namespace Orvane
