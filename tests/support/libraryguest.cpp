#include "libraryguest.h"

#include <exception>
#include <stdexcept>
#include <string>

#include "importhook.h"

namespace test {
namespace {

HMODULE LoadGuest(const char* guest) {
  if (Library() != nullptr) throw std::runtime_error("driverinfo.dll is loaded already");
  const HMODULE module = LoadLibraryA(guest);
  if (module == nullptr) throw std::runtime_error(std::string(guest) + " cannot be loaded");
  return module;
}

}  // namespace

LibraryGuest::LibraryGuest(const char* guest) : m_guest(LoadGuest(guest)) {}

LibraryGuest::~LibraryGuest() noexcept(false) {
  m_guest.reset();
  if (Library() != nullptr && std::uncaught_exceptions() == 0) throw std::runtime_error("driverinfo.dll stays loaded");
}

void* LibraryGuest::Address(const char* name) const {
  void* const address = reinterpret_cast<void*>(GetProcAddress(m_guest.get(), name));
  if (address == nullptr) throw std::runtime_error("the guest has no function " + std::string(name));
  return address;
}

}  // namespace test
