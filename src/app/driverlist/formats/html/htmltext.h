/// @file
/// Text of any origin, made fit for a page, and the markup around it.
#pragma once

#include <string>
#include <string_view>

namespace driverlist {

/// `utf8` for the content of an element, a quoted attribute or a title: markup characters as references, all others as
/// Visible() shows them.
std::string HtmlText(std::string_view utf8);

/// An attribute with its value, any text; nothing when the value is empty.
std::string Attribute(std::string_view name, std::string_view value);

/// An element with its content, which is markup.
std::string Element(const std::string& tag, std::string_view cssClass, const std::string& content);

/// `text` with its first letter in upper case, if that is an ASCII letter.
std::string Capitalized(std::string text);

}  // namespace driverlist
