/// @file
/// The forms in which the program shows drivers. All are UTF-8 and the same in every locale.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "columns.h"
#include "driverinfo.h"

namespace driverlist {

/// One line per driver below a line of column names, columns aligned by blanks, lines ended by "\n". With a `width` other
/// than 0, the widest columns are cut so that lines have at most that many characters. Control characters become "?".
std::string FormatTable(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                        std::size_t width);

/// RFC 4180, with a header record of column names.
std::string FormatCsv(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns);

/// Where and how a listing was made.
struct ListingContext {
  std::string host;
  /// UTC, ISO 8601: "2024-05-06T07:08:09Z".
  std::string time;
  /// As on the command line: "all", "registered" or "by-device".
  std::string mode;
};

/// One object: "schema_version" (1), "host", "time", "mode" and "drivers", an array of objects with the columns as members.
std::string FormatJson(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                       const ListingContext& context);

}  // namespace driverlist
