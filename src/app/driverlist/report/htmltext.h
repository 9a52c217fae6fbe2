/// @file
/// Text of any origin, made fit for a page.
#pragma once

#include <string>
#include <string_view>

namespace driverlist {

/// `utf8` for the content of an element, a quoted attribute or a title: markup characters as references; control characters,
/// marks of writing direction and other characters that nobody sees as "[U+202E]"; what is no UTF-8 as U+FFFD.
std::string HtmlText(std::string_view utf8);

}  // namespace driverlist
