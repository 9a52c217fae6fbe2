#include "interface/options.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>

#include "interface/failure.h"

namespace flat {
namespace {

constexpr std::uint32_t AllKinds =
    DRIVERINVENTORY_SERVICES | DRIVERINVENTORY_DEVICES | DRIVERINVENTORY_PACKAGES | DRIVERINVENTORY_CHIPSETS;

/// What every version of the structure contains.
constexpr std::uint32_t SmallestSize = offsetof(driverinventory_options, kinds) + sizeof(std::uint32_t);

/// No version of the structure is this long: its size was never set.
constexpr std::uint32_t LargestSize = 4096;

/// A larger count was never set.
constexpr std::uint32_t MostLists = 4096;

[[noreturn]] void Refuse(const char* sentence) { throw Failure(DRIVERINVENTORY_E_ARGUMENT, sentence); }

/// The options that this version knows. Those after them must not be set.
driverinventory_options KnownPart(const driverinventory_options* options) {
  driverinventory_options known{};
  if (options == nullptr) return known;
  const std::uint32_t size = options->size;
  if (size < SmallestSize || size > LargestSize) Refuse("The size of the options is not set.");
  const auto* const bytes = reinterpret_cast<const char*>(options);
  std::memcpy(&known, bytes, std::min<std::size_t>(size, sizeof(known)));
  if (std::any_of(bytes + std::min<std::size_t>(size, sizeof(known)), bytes + size, [](char c) { return c != 0; })) {
    throw Failure(DRIVERINVENTORY_E_UNSUPPORTED, "The options ask for something that this version does not know.");
  }
  return known;
}

/// Hands steps to the host; anything but 0 from it stops.
std::function<bool(const inventory::Step&)> ProgressOf(const driverinventory_options& options) {
  if (options.progress == nullptr) return nullptr;
  return [progress = options.progress, context = options.context](const inventory::Step& step) {
    return progress(context, std::string(step.what).c_str(), step.done, step.total) == 0;
  };
}

std::vector<std::string> KnownLists(const driverinventory_options& options) {
  if (options.known_list_count == 0) return {};
  if (options.known_lists == nullptr) Refuse("The lists of known drivers are null.");
  if (options.known_list_count > MostLists) Refuse("There are too many lists of known drivers.");
  if (options.verify == 0) Refuse("Lists of known drivers need verification: set verify.");
  std::vector<std::string> paths;
  for (std::uint32_t i = 0; i < options.known_list_count; ++i) {
    if (options.known_lists[i] == nullptr) Refuse("A list of known drivers is null.");
    paths.emplace_back(options.known_lists[i]);
  }
  return paths;
}

}  // namespace

Wanted ReadOptions(const driverinventory_options* options) {
  const driverinventory_options known = KnownPart(options);
  if ((known.kinds & ~AllKinds) != 0) {
    throw Failure(DRIVERINVENTORY_E_UNSUPPORTED,
                  "The options ask for a kind of record that this version does not know.");
  }
  Wanted wanted;
  wanted.verify = known.verify != 0;
  wanted.knownLists = KnownLists(known);
  wanted.kinds = known.kinds;
  if (known.host_id != nullptr) wanted.collect.hostId = known.host_id;
  wanted.collect.progress = ProgressOf(known);
  return wanted;
}

bool IsWanted(inventory::Kind kind, std::uint32_t kinds) {
  switch (kind) {
    case inventory::Kind::Service:
      return (kinds & DRIVERINVENTORY_SERVICES) != 0;
    case inventory::Kind::Device:
      return (kinds & DRIVERINVENTORY_DEVICES) != 0;
    case inventory::Kind::Package:
      return (kinds & DRIVERINVENTORY_PACKAGES) != 0;
    case inventory::Kind::Chipset:
      break;
  }
  return (kinds & DRIVERINVENTORY_CHIPSETS) != 0;
}

}  // namespace flat
