/// @file
/// The fields of a driver record as the program names them: by the names of the record's members, in their order.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "driverinfo.h"

namespace driverlist {

/// One field of a record.
struct Column {
  std::string_view name;
  std::variant<std::string Orvane::DriverData::*, std::vector<std::string> Orvane::DriverData::*,
               std::int32_t Orvane::DriverData::*>
      member;
};

/// All fields, in the order of the record.
const std::vector<Column>& AllColumns();

/// The field called `name`; null when there is none.
const Column* FindColumn(std::string_view name);

/// The value of a field in UTF-8; a list's texts are joined by ";".
std::string ColumnText(const Orvane::DriverData& driver, const Column& column);

}  // namespace driverlist
