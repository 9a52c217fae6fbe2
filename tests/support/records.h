/// @file
/// Whole records as text: operator== of a record looks at its name only.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "driverinfo.h"

namespace test {

/// A record by its fields, empty ones left out.
using Fields = std::map<std::string, std::string>;

Fields FieldsOf(const Orvane::DriverData& driver);

/// One "field=value" per field, empty ones left out, joined by "; ".
std::string Described(const Orvane::DriverData& driver);

/// Described() of each record.
std::vector<std::string> Described(const std::vector<Orvane::DriverData>& drivers);

}  // namespace test
