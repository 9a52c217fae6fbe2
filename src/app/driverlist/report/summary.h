/// @file
/// What stands at the top of the page: how many drivers there are of which kind.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "driverinfo.h"

namespace driverlist {

/// Drivers that have something in common.
struct Group {
  /// UTF-8.
  std::string label;
  std::size_t drivers = 0;
  /// Those of them whose service runs.
  std::size_t running = 0;
  /// Whether it is the group of those about which nothing is known.
  bool unknown = false;
};

struct Summary {
  std::size_t drivers = 0;
  /// Drivers with a state or a start type.
  std::size_t services = 0;
  std::size_t running = 0;
  std::size_t devicesWithoutDriver = 0;
  /// Different texts of `provider`, the empty one left out.
  std::size_t providers = 0;
  /// The eight with the most drivers first (with as many, by their text), then the others together, then the unknown.
  std::vector<Group> byProvider;
  /// Running, stopped, any other state, then those that are no service. Groups without drivers are left out; here and below.
  std::vector<Group> byState;
  /// Services only, in the order in which Windows starts them.
  std::vector<Group> byStartType;
  /// Full years between the date of the image and `time`, from young to old; these groups are never left out.
  std::vector<Group> byAge;
};

/// `time`: when the drivers were listed, "2024-05-06T07:08:09Z". When it is none, no age is known.
Summary Summarized(const std::vector<Orvane::DriverData>& drivers, std::string_view time);

}  // namespace driverlist
