/// @file
/// The library in the hands of guest.dll.
#pragma once

#include <memory>

#include "guest.h"
#include "importhook.h"
#include "libraryguest.h"

namespace sweeps {

using test::Library;

/// A fresh library and its host.
class FreshLibrary {
 public:
  FreshLibrary() : m_module("guest.dll"), m_guest(m_module.Lookup<MakeGuest>("MakeGuest")()) {}

  Guest& Host() const { return *m_guest; }

 private:
  test::LibraryGuest m_module;
  // Goes before its module.
  std::unique_ptr<Guest> m_guest;
};

}  // namespace sweeps
