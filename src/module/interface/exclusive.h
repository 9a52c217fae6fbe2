/// @file
/// A lock that needs no memory and leaves none behind when the library is unloaded.
#pragma once

#include <windows.h>

namespace flat {

/// Holds `lock` for its scope.
class Exclusive {
 public:
  explicit Exclusive(SRWLOCK& lock) : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
  ~Exclusive() { ReleaseSRWLockExclusive(&m_lock); }
  Exclusive(const Exclusive&) = delete;
  Exclusive& operator=(const Exclusive&) = delete;

 private:
  SRWLOCK& m_lock;
};

}  // namespace flat
