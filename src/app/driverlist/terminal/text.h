/// @file
/// Text of any origin, made fit for people to read and for the columns of a terminal. All texts are UTF-8; a byte that
/// is not part of a character counts as U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace driverlist {

/// Whether `c` acts on a terminal, on a page or on the text around it without being seen itself: control characters,
/// marks of writing direction, blanks of no width, tags, line separators. The joiners U+200C and U+200D are not among
/// them: some languages need them.
bool IsUnseen(char32_t c);

/// `utf8` for people: each unseen character by its code, such as "[U+202E]", and each byte that is not UTF-8 as U+FFFD.
std::string Visible(std::string_view utf8);

/// Columns of a terminal that `utf8` takes, as ColumnsOf() says of each character.
std::size_t Columns(std::string_view utf8);

/// The start of the code point after the one at `at`. `at` is within `utf8`.
std::size_t NextCodePoint(std::string_view utf8, std::size_t at);

/// As much of the beginning of `utf8` as fits into `columns`; it ends with "…" if something was cut off. It is one
/// column shorter if otherwise half of a wide character would remain.
std::string Cut(std::string_view utf8, std::size_t columns);

/// As much of the end of `utf8` as fits into `columns`; it begins with "…" if something was cut off.
std::string CutFront(std::string_view utf8, std::size_t columns);

}  // namespace driverlist
