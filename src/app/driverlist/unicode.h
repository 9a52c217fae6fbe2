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

/// The first `columns` code points of `utf8`; the last of them is "…" when that is not all.
std::string Cut(std::string_view utf8, std::size_t columns);

/// The system's text for a Windows error code, without the line break at its end.
std::string ErrorText(unsigned long code);

}  // namespace driverlist
