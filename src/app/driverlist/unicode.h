/// @file
/// The three encodings of the program: the records' ANSI code page, Windows' UTF-16, and UTF-8, which it prints and writes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace driverlist {

std::string Utf8FromAnsi(std::string_view ansi);
std::string Utf8FromWide(std::wstring_view wide);
std::wstring WideFromUtf8(std::string_view utf8);

/// Code points of `utf8`, each taken as one column of a terminal.
std::size_t Columns(std::string_view utf8);

/// Where the code point behind the one at `at` starts.
std::size_t NextCodePoint(std::string_view utf8, std::size_t at);

/// The first `columns` code points of `utf8`; the last of them is "…" when that is not all.
std::string Cut(std::string_view utf8, std::size_t columns);

/// The last `columns` code points of `utf8`; the first of them is "…" when that is not all.
std::string CutFront(std::string_view utf8, std::size_t columns);

/// `utf8` in lower case, letter by letter, the same in every locale.
std::string LowerCase(std::string_view utf8);

/// `utf8` without characters that would move a terminal's cursor: each C0 and C1 control is a "?".
std::string Printable(std::string utf8);

/// The system's text for a Windows error code, without the line break at its end.
std::string ErrorText(unsigned long code);

}  // namespace driverlist
