/// @file
/// One record per driver name.
#pragma once

#include <vector>

#include "driverinfo.h"

namespace Orvane {

/// Orders `drivers` by name and keeps, for each name, the record that operator< puts first: the one with the oldest
/// version, or any one of several equally old records. Logs the counts before and after at level 4. When memory runs
/// out, `drivers` still holds every record.
void SortAndRemoveDuplicates(std::vector<DriverData>& drivers);

/// Drops each record of `drivers` whose name one of `devices` also has, appends `devices`, and then works like
/// SortAndRemoveDuplicates(). No two of `devices` may have the same name. Logs the dropped records at level 3, in the
/// order of `devices`. When memory runs out, `drivers` still holds every record that was in it.
void MergeDevices(std::vector<DriverData> devices, std::vector<DriverData>& drivers);

}  // namespace Orvane
