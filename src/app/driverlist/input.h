/// @file
/// Files that the program reads.
#pragma once

#include <string>

namespace driverlist {

/// Sets `text` to the content of the file at `path` (UTF-8). Returns an empty text, or what went wrong.
std::string ReadFileWhole(const std::string& path, std::string& text);

}  // namespace driverlist
