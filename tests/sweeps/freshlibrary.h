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

 private:
  HMODULE m_module;
  std::unique_ptr<Guest> m_guest;
};

/// A module that stays loaded, so that the library loads faster.
class KeptModule {
 public:
  explicit KeptModule(const char* module) : m_module(LoadLibraryA(module)) {}
  ~KeptModule() { FreeLibrary(m_module); }
  KeptModule(const KeptModule&) = delete;
  KeptModule& operator=(const KeptModule&) = delete;

 private:
  HMODULE m_module;
};

/// driverinfo.dll.
HMODULE Library();

}  // namespace sweeps
