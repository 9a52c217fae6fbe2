/// @file
/// Where the program's UTF-8 goes.
#pragma once

#include <cstddef>
#include <string>

namespace driverlist {

/// Columns of the terminal behind standard output, less one: some follow a full line by an empty one. 0 when there is
/// no terminal.
std::size_t TerminalWidth();

/// The same of standard error.
std::size_t StandardErrorWidth();

/// Writes `text` to standard output. Returns an empty text, or what went wrong.
std::string WriteStandardOutput(const std::string& text);

/// Writes `text` to standard error; there is nowhere to report a failure to.
void WriteStandardError(const std::string& text);

/// Whether there is a folder at `path`, where a file was meant.
bool IsFolder(const std::wstring& path);

/// Makes `text` the content of the file at `path` (UTF-8): whole, or not at all, in which case a former file stays as
/// it is. A device, such as NUL, just gets it. The text is written to a draft beside the file, which takes its place;
/// drafts of processes that ended before they got that far are removed. Returns an empty text, or what went wrong.
std::string WriteFileWhole(const std::string& path, const std::string& text);

}  // namespace driverlist
