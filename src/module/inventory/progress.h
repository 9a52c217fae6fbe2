/// @file
/// The progress of the library, read from its log.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace inventory {

/// The progress that a line of the library's log (ANSI code page) reports, such as "device 8086-15F3-1028-0A5C" or
/// "package oem3.inf", in UTF-8. Nullopt for a line that reports no progress.
std::optional<std::string> ProgressText(std::string_view logLine);

}  // namespace inventory
