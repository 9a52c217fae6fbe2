/// @file
/// The page without its data: report.html with report.css and report.js in it, as the build put them together.
#pragma once

#include <string_view>

namespace driverlist {

/// UTF-8 with places for data: "{{host}}", "{{facts}}", "{{version}}", "{{note}}", "{{summary}}", "{{table}}".
std::string_view ReportSkeleton();

}  // namespace driverlist
