/// @file
/// Records as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "columns.h"
#include "driverinfo.h"

namespace driverlist {

/// Keeps the order of members.
using Json = nlohmann::ordered_json;

/// Sets the members of `object` that `columns` name to the fields of `driver`, whose texts are in the ANSI code page.
void AddFields(Json& object, const Orvane::DriverData& driver, const std::vector<Column>& columns);

/// One line without an end; indented by two blanks a level when `isIndented`. What is no UTF-8 is replaced.
std::string JsonText(const Json& json, bool isIndented);

}  // namespace driverlist
