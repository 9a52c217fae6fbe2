/// @file
/// How far the library is, by its log.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace inventory {

/// What a line of the library's log (ANSI code page) says about the way of a listing, such as "device
/// 8086-15F3-1028-0A5C" or "package oem3.inf", in UTF-8. Nothing for a line that says nothing about it.
std::optional<std::string> ProgressText(std::string_view logLine);

}  // namespace inventory
