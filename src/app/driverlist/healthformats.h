/// @file
/// The forms in which the program shows what deserves a look. All are UTF-8 and the same in every locale.
#pragma once

#include <string>
#include <vector>

#include "healthrules.h"
#include "table.h"

namespace driverlist {

/// Where, when and by what a machine was examined, in UTF-8.
struct HealthContext {
  std::string host;
  std::string windows;
  std::string tool;
  std::string time;
};

/// For each rule that found something, a line that says what it looks for and a row per finding below. A line says so when
/// there is none.
std::string FormatHealthTable(const std::vector<Finding>& findings, const Page& page);

/// See docs/driverlist.md.
std::string FormatHealthJson(const std::vector<Finding>& findings, const HealthContext& context);

}  // namespace driverlist
