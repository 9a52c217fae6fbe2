/// @file
/// Colours of the terminal behind standard output.
#pragma once

namespace driverlist {

/// While it lives, that terminal understands colour codes, if it can and the environment variable NO_COLOR does not
/// forbid it. Afterwards it is as it was.
class Colours {
 public:
  /// Stays off unless `wanted`.
  explicit Colours(bool wanted);
  ~Colours();
  Colours(const Colours&) = delete;
  Colours& operator=(const Colours&) = delete;

  bool AreOn() const { return m_areOn; }

 private:
  bool m_areOn = false;
  unsigned long m_formerMode = 0;
};

}  // namespace driverlist
