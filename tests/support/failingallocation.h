/// @file
/// Memory that runs out.
#pragma once

#include <cstddef>
#include <cstdlib>

#include "importhook.h"

namespace test {

/// While it lives, one allocation finds no memory: the one behind `before` others. All memory of C++ comes from malloc
/// in libstdc++, whichever module asks for it.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t before) : m_left(before) {}

  /// Whether there were so many.
  bool HasFailed() const { return m_hasFailed; }

 private:
  std::size_t m_left;
  bool m_hasFailed = false;
  HOOK(m_malloc, GetModuleHandleA("libstdc++-6.dll"), malloc, [this](std::size_t size) {
    if (m_left-- > 0) return m_malloc.Real(size);
    m_left = static_cast<std::size_t>(-1);
    m_hasFailed = true;
    return static_cast<void*>(nullptr);
  });
};

}  // namespace test
