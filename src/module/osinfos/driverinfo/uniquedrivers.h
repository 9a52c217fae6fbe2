/// @file
/// One record per driver name.
#pragma once

#include <vector>

#include "driverinfo.h"

namespace Orvane {

/// Orders `drivers` by name and keeps, of each name, the record that operator< puts first: the one with the oldest
/// version. Logs the counts before and after at level 4.
void SortAndRemoveDuplicates(std::vector<DriverData>& drivers);

}  // namespace Orvane
