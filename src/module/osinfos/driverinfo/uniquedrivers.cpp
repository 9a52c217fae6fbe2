#include "uniquedrivers.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/logline.h"

namespace Orvane {

void SortAndRemoveDuplicates(std::vector<DriverData>& drivers) {
  // By name only, and then the oldest of each name: the order of versions is not transitive (1g is before 9, 9 before
  // 10, 10 before 1g), so a sort by operator< itself might run out of its range. What is kept is the same.
  std::sort(drivers.begin(), drivers.end(), [](const DriverData& a, const DriverData& b) { return a.name < b.name; });
  ORVANE_LOG(4) << "driverlist size before erase unique:" << std::to_string(drivers.size());
  // Comparing versions may run out of memory, moving records may not: first decide, then move, so that no record is
  // lost.
  std::vector<std::size_t> oldest;
  for (auto run = drivers.begin(); run != drivers.end();) {
    const auto runEnd = std::find_if(run, drivers.end(), [run](const DriverData& driver) { return !(driver == *run); });
    oldest.push_back(static_cast<std::size_t>(std::min_element(run, runEnd) - drivers.begin()));
    run = runEnd;
  }
  auto kept = drivers.begin();
  for (const std::size_t index : oldest) *kept++ = std::move(drivers[index]);
  drivers.erase(kept, drivers.end());
  ORVANE_LOG(4) << "driverlist size after erase unique:" << std::to_string(drivers.size());
}

}  // namespace Orvane
