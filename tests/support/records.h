/// @file
/// Whole records as text: operator== of a record looks at its name only.
#pragma once

#include <string>
#include <vector>

#include "driverinfo.h"

namespace test {

/// One "field=value" per field, empty ones left out, joined by "; ".
std::string Described(const Orvane::DriverData& driver);

/// Described() of each record.
std::vector<std::string> Described(const std::vector<Orvane::DriverData>& drivers);

}  // namespace test
