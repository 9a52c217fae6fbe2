/// @file
/// The library as a process has it that just loaded it.
#pragma once

#include "platform/handles.h"

namespace test {

/// driverinfo.dll, loaded with `guest`, a DLL that uses it, and unloaded again: its caches are empty at the beginning.
/// One at a time, in a program that does not import the library itself. Throws std::runtime_error when the library was
/// there before, when a DLL cannot be loaded, and when the library stays behind: the next one would not be fresh.
class LibraryGuest {
 public:
  explicit LibraryGuest(const char* guest);
  ~LibraryGuest() noexcept(false);
  LibraryGuest(const LibraryGuest&) = delete;
  LibraryGuest& operator=(const LibraryGuest&) = delete;

  /// A function that the guest exports.
  template <typename Function>
  Function* Lookup(const char* name) const {
    return reinterpret_cast<Function*>(Address(name));
  }

 private:
  void* Address(const char* name) const;

  Orvane::ModuleHandle m_guest;
};

}  // namespace test
