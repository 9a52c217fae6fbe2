#include "freshlibrary.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace sweeps {
namespace {

HMODULE LoadGuest() {
  if (Library() != nullptr) throw std::runtime_error("the library is loaded already");
  const HMODULE module = LoadLibraryA("guest.dll");
  if (module == nullptr) throw std::runtime_error("guest.dll cannot be loaded");
  return module;
}

Guest* NewGuest(HMODULE module) {
  void* const make = reinterpret_cast<void*>(GetProcAddress(module, "MakeGuest"));
  if (make == nullptr) throw std::runtime_error("guest.dll makes no guest");
  return reinterpret_cast<MakeGuest*>(make)();
}

}  // namespace

FreshLibrary::FreshLibrary() : m_module(LoadGuest()), m_guest(NewGuest(m_module)) {}

FreshLibrary::~FreshLibrary() {
  m_guest.reset();
  FreeLibrary(m_module);
  EXPECT_EQ(Library(), nullptr) << "driverinfo.dll stays loaded";
}

HMODULE Library() { return GetModuleHandleA("driverinfo.dll"); }

}  // namespace sweeps
