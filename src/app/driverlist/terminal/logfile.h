/// @file
/// Writes the log of a run to a file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/handles.h"

namespace driverlist {

/// While it lives, appends the lines of the log to a file, each immediately, in UTF-8, with time, level and place.
/// Unlike the log module's own file sink, it creates no folders, and it notices if a line cannot be written.
///
/// Before the file grows past MaxBytes, it is renamed to "name.1.ext", the former "name.1.ext" to "name.2.ext", and so
/// on; MaxFiles renamed files are kept.
class LogFile {
 public:
  static constexpr std::uint64_t MaxBytes = 10 << 20;
  static constexpr unsigned MaxFiles = 3;

  /// `path` is UTF-8.
  explicit LogFile(const std::string& path);
  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  /// Why the file could not be opened or a line could not be written (no further line is written then); otherwise
  /// empty.
  std::string Problem() const;

 private:
  void Open();
  void Rotate();
  void Append(std::string_view line);

  std::wstring m_path;
  Orvane::FileHandle m_file;
  std::uint64_t m_bytes = 0;
  unsigned long m_error = 0;
};

}  // namespace driverlist
