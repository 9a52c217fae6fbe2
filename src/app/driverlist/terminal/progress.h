/// @file
/// A line that shows what a listing is doing.
#pragma once

#include <cstddef>
#include <string>

#include "terminal/interruption.h"

namespace driverlist {

/// While it lives, shows the progress of the library on the terminal behind standard error, in one line that is erased
/// at the end, also when the process is interrupted. It reads the progress from the log, which it takes over, so do not
/// use it if the user asked for a log. Does nothing unless it is `wanted` and standard error is a terminal.
class Progress {
 public:
  explicit Progress(bool wanted);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows a text that is not in the log, unless the line was updated a moment ago by a text with the same first word.
  /// Only one thread at a time may call it.
  void Show(const std::string& text);

 private:
  void Clear() const;

  bool m_isOn = false;
  /// Width of the line that is shown.
  std::size_t m_columns = 0;
  unsigned long long m_shownAt = 0;
  /// The first word of what was shown then.
  std::string m_topic;
  const UndoneWhenInterrupted m_undoing{[this] { Clear(); }};
};

}  // namespace driverlist
