/// @file
/// The library as a process has it that just loaded it.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "guest.h"

namespace sweeps {

/// Loads guest.dll and with it driverinfo.dll, and unloads both again; a library that was there before throws
/// std::runtime_error, one that stays behind fails the test: neither would be a fresh one.
class FreshLibrary {
 public:
  FreshLibrary();
  ~FreshLibrary();
  FreshLibrary(const FreshLibrary&) = delete;
  FreshLibrary& operator=(const FreshLibrary&) = delete;

  Guest& Host() const { return *m_guest; }

  /// Deletes the guest, so that nothing of the library is in use, without unloading it.
  void DeleteGuest() { m_guest.reset(); }

 private:
  HMODULE m_module;
  std::unique_ptr<Guest> m_guest;
};

/// driverinfo.dll.
HMODULE Library();

/// What a fresh library lists.
std::vector<test::Fields> Listed(int mode);

}  // namespace sweeps
