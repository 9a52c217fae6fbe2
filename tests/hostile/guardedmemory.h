/// @file
/// Memory that ends where nothing may be read or written: whoever goes one byte too far crashes at once.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <string>

namespace test {

class GuardedMemory {
 public:
  /// Has room for `largest` bytes. Throws std::runtime_error when the system refuses.
  explicit GuardedMemory(std::size_t largest);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  /// `size` zero bytes, the last of which is the last that may be touched. They take the place of the former ones.
  char* Zeros(std::size_t size);

  /// The same with `bytes` in it.
  char* Put(const std::string& bytes);

  /// Whether `address` lies in it, the byte behind the last included.
  bool Holds(const void* address) const;

  std::size_t Largest() const { return m_largest; }

 private:
  std::size_t m_largest;
  char* m_begin;
  char* m_end;
};

/// Whether `act` ends with an access violation. It runs on a thread of its own, which is given up then, with all that
/// it holds.
bool Crashes(const std::function<void()>& act);

}  // namespace test
