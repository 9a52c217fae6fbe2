/// @file
/// Rules for file names. Windows ignores their case.
#pragma once

#include <string>
#include <string_view>

#include "platform/encoding.h"

namespace inventory {

/// `path` without its folders.
inline std::string FileName(std::string_view path) { return std::string(path.substr(path.find_last_of("\\/") + 1)); }

/// The same in lower case: equal for two copies of a file.
inline std::string FileKey(std::string_view path) { return Orvane::LowerCase(FileName(path)); }

/// Whether `text` ends with `ending`, ignoring case. `ending` is in lower case.
inline bool EndsIgnoringCase(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() && Orvane::LowerCase(text.substr(text.size() - ending.size())) == ending;
}

/// Whether `file` has a name like the files that services load.
inline bool IsDriverFile(const std::string& file) { return EndsIgnoringCase(file, ".sys"); }

/// Whether the library lists a package under the name of `file`.
inline bool IsListedFile(const std::string& file) { return IsDriverFile(file) || EndsIgnoringCase(file, ".inf"); }

}  // namespace inventory
