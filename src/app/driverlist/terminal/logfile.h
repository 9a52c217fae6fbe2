/// @file
/// The log of a run in a file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/handles.h"

namespace driverlist {

/// While it lives, takes the log and appends its lines to a file, each at once, in UTF-8, with time, level and place.
/// Unlike the log's own file it makes no folders, and it knows when a line could not be written.
///
/// Before the file grows past MaxBytes it is renamed to "name.1.ext", and so on; of files so renamed MaxFiles are kept.
class LogFile {
 public:
  static constexpr std::uint64_t MaxBytes = 10 << 20;
  static constexpr unsigned MaxFiles = 3;

  /// `path` is UTF-8.
  explicit LogFile(const std::string& path);
  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  /// Why the file could not be opened, or why a line could not be written, after which no other is; else empty.
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
