/// @file
/// The forms in which the program shows drivers. All are UTF-8 and the same in every locale.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "columns.h"
#include "driverinfo.h"

namespace driverlist {

/// One line per driver below a line of column names, as FormatRows() lays them out on a page of that `width` (0 for any).
std::string FormatTable(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                        std::size_t width, bool colours = false);

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

/// One object per driver and line, each with "schema_version" (1), "host", "time", "mode" and the columns as members.
std::string FormatJsonLines(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                            const ListingContext& context);

/// A table of GitHub Flavored Markdown, in which every text means itself.
std::string FormatMarkdown(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns);

}  // namespace driverlist
