/// @file
/// Texts in lines.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace driverlist {

/// Visible() `text` in pieces of at most `columns` (not 0) columns of a terminal, broken at blanks, which are dropped,
/// and within words that are longer, preferably behind a folder of a path.
std::vector<std::string> Wrapped(const std::string& text, std::size_t columns);

/// Visible() `text` as lines of up to `width` columns of a terminal, each behind `indent` blanks and ended by "\n". One
/// line when `width` is 0; at least one character to a line.
std::string Paragraph(const std::string& text, std::size_t width, std::size_t indent = 0);

}  // namespace driverlist
