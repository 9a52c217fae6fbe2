/// @file
/// A line that tells what a listing is doing.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace driverlist {

/// What a line of the library's log (ANSI code page) tells of the way of a listing, such as "device 8086-15F3-1028-0A5C", in
/// UTF-8; none for a line that tells nothing.
std::optional<std::string> ProgressText(const std::string& logLine);

/// While it lives, shows on the terminal behind standard error what the library's log tells of its way, in one line that is
/// gone in the end. Takes the log for itself, so it is not for a process whose user asked for one. Nothing happens unless it is
/// `wanted` and standard error is a terminal.
class Progress {
 public:
  explicit Progress(bool wanted);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  void Show(const std::string& text);

  bool m_isOn = false;
  /// Of the line that stands there.
  std::size_t m_columns = 0;
  unsigned long long m_shownAt = 0;
};

}  // namespace driverlist
