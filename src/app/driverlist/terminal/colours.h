/// @file
/// Colours of the terminal behind standard output.
#pragma once

#include <optional>

#include "terminal/interruption.h"

namespace driverlist {

/// While it lives, that terminal interprets colour codes, if it can and the environment variable NO_COLOR does not
/// forbid it. Afterwards, and when the process is interrupted, the former mode is restored.
class Colours {
 public:
  /// Stays off unless `wanted`.
  explicit Colours(bool wanted);
  ~Colours();
  Colours(const Colours&) = delete;
  Colours& operator=(const Colours&) = delete;

  bool AreOn() const { return m_undoing.has_value(); }

 private:
  void Restore() const;

  unsigned long m_formerMode = 0;
  /// Of colours that are on.
  std::optional<UndoneWhenInterrupted> m_undoing;
};

}  // namespace driverlist
