/// @file
/// What a page counts. Each number is that of a predicate, or of the records that share a value.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/record.h"

namespace driverlist {

/// Records that have something in common.
struct Group {
  /// UTF-8.
  std::string label;
  std::size_t records = 0;
  /// Those of them that are a running service.
  std::size_t running = 0;
  /// Whether it is the group of those whose value is unknown.
  bool isUnknown = false;
};

struct Summary {
  std::size_t services = 0;
  std::size_t runningServices = 0;
  std::size_t thirdPartyServices = 0;
  std::size_t devices = 0;
  std::size_t devicesWithoutDriver = 0;
  std::size_t devicesWithProblem = 0;
  std::size_t packages = 0;
  std::size_t oemPackages = 0;
  /// The eight with the most records first (with as many, by their text), then the others together, then the unknown.
  /// Groups without records are left out; here and below.
  std::vector<Group> byProvider;
  /// Services: running, stopped, then any other state.
  std::vector<Group> byState;
  /// Services, in the order in which Windows starts them.
  std::vector<Group> byStartType;
  /// Services: full years between the time of the image and that of the inventory, from young to old; these groups are
  /// never left out.
  std::vector<Group> byAge;
  std::vector<Group> byKind;
};

/// `time`: when the inventory was made, "2024-05-06T07:08:09Z"; when it is no such text, no age is known.
Summary Summarized(const inventory::Records& records, std::string_view time);

}  // namespace driverlist
