/// @file
/// The listing as a page to read, print and pass on.
#pragma once

#include <string>
#include <vector>

#include "columns.h"
#include "driverinfo.h"
#include "formats.h"

namespace driverlist {

/// One HTML file in UTF-8 that needs nothing beside it: bars by provider, state, start type and age over all `drivers`, and a
/// table of `columns` in the order of `drivers`. It is read without script; its own script adds search and sorting. Its
/// policy forbids any other script, and fetching anything. Texts of records are shown as text whatever they hold (HtmlText()).
std::string FormatHtml(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                       const ListingContext& context);

}  // namespace driverlist
