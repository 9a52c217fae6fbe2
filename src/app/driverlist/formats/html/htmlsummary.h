/// @file
/// The summary of a page.
#pragma once

#include <string>

#include "formats/html/summary.h"

namespace driverlist {

/// Figures, and bars whose numbers are beside them as text.
std::string SummaryHtml(const Summary& summary);

}  // namespace driverlist
