/// @file
/// Writes the program's UTF-8 output.
#pragma once

#include <cstddef>
#include <string>

namespace driverlist {

/// Width of the terminal behind standard output, less one, because some terminals show an empty line after a full one.
/// 0 if there is no terminal.
std::size_t TerminalWidth();

/// The same for standard error.
std::size_t StandardErrorWidth();

/// Writes `text` to standard output. Returns an empty text, or what went wrong.
std::string WriteStandardOutput(const std::string& text);

/// Writes `text` to standard error; there is nowhere to report a failure to.
void WriteStandardError(const std::string& text);

/// Whether there is a folder at `path`, where a file was meant.
bool IsFolder(const std::wstring& path);

/// Makes `text` the content of the file at `path` (UTF-8), completely or not at all; if it fails, a former file stays
/// unchanged. The text is written to a draft next to the file, which then replaces the file; an interruption removes
/// the draft, and so do later calls if it was left behind. A device, such as NUL, is written to directly. Returns an
/// empty text, or what went wrong.
std::string WriteFileWhole(const std::string& path, const std::string& text);

}  // namespace driverlist
