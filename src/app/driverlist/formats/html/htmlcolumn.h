/// @file
/// How a page presents a column, and values of its type.
#pragma once

#include <string>
#include <string_view>

#include "formats/table.h"
#include "inventory/members.h"

namespace driverlist {

/// The label for people, with the time zone if the values are times.
std::string LabelOf(const inventory::Column& column);

/// How the script sorts and shows values of the type: "version", "number", "time" or "text".
std::string_view KindOf(inventory::ValueType type);

/// The CSS class of its cells; empty for ordinary text.
std::string StyleOf(const inventory::Column& column);

/// The CSS class of a cell with that tone; empty for a plain cell.
std::string_view NameOf(Tone tone);

}  // namespace driverlist
