/// @file
/// A line that shows what a listing is doing.
#pragma once

#include <cstddef>
#include <string>

namespace driverlist {

/// While it lives, shows on the terminal behind standard error how far the library is by its log, in one line that is
/// gone in the end. Takes the log for itself, so it is not for a process whose user asked for one. Nothing happens
/// unless it is `wanted` and standard error is a terminal.
class Progress {
 public:
  explicit Progress(bool wanted);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows something that is not in the log, unless something was shown just before. One thread at a time.
  void Show(const std::string& text);

 private:
  bool m_isOn = false;
  /// Of the line that is shown.
  std::size_t m_columns = 0;
  unsigned long long m_shownAt = 0;
};

}  // namespace driverlist
