/// @file
/// The counts on a page. Each number counts the records for which a predicate holds or that share a value.
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
  /// The indexes of the records.
  std::vector<std::size_t> records = {};
  /// The number of them that are running services.
  std::size_t running = 0;
  /// Whether it is the group of records whose value is unknown.
  bool isUnknown = false;

  std::size_t Count() const { return records.size(); }
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
  /// The eight with the most records first (equal counts by text), then all others together, then the unknown. Groups
  /// without records are left out; here and below.
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

/// `time`: when the inventory was made, "2024-05-06T07:08:09Z"; if it is not such a text, all ages are unknown.
Summary Summarized(const inventory::Records& records, std::string_view time);

}  // namespace driverlist
