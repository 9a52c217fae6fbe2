/// @file
/// The page without its data: report.html with report.css and report.js, combined by the build.
#pragma once

#include <string_view>

namespace driverlist {

/// UTF-8 with places for data: "{{title}}", "{{facts}}", "{{version}}", "{{note}}", "{{sections}}", "{{rows}}",
/// "{{table}}", "{{data}}".
std::string_view ReportSkeleton();

}  // namespace driverlist
