/// @file
/// Line breaks in long names, paths and identifiers: never inside a number.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace driverlist {

/// HtmlText() of `utf8`, with a place to break after each mark that joins names ("\", "/", "_", "-", "&", ";", ",") and
/// after 16 letters in a row.
std::string Breakable(std::string_view utf8);

/// The width of the widest unbreakable part of Visible() `utf8`, in columns of a terminal.
std::size_t WidestPart(std::string_view utf8);

}  // namespace driverlist
