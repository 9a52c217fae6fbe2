#include "freshlibrary.h"

#include <stdexcept>

namespace bench {
namespace {

constexpr char Library[] = "driverinfo.dll";

template <typename Function>
Function* Lookup(HMODULE module, const char* name) {
  void* const address = reinterpret_cast<void*>(GetProcAddress(module, name));
  if (address == nullptr) throw std::runtime_error("benchlisting.dll has no function " + std::string(name));
  return reinterpret_cast<Function*>(address);
}

void RequireUnloaded() {
  if (GetModuleHandleA(Library) != nullptr) throw std::runtime_error("driverinfo.dll is still loaded");
}

}  // namespace

FreshLibrary::FreshLibrary() {
  RequireUnloaded();
  m_listing = LoadLibraryA("benchlisting.dll");
  if (m_listing == nullptr) throw std::runtime_error("benchlisting.dll cannot be loaded");
  m_setRecords = Lookup<SetRecordsFunction>(m_listing, "SetRecords");
  m_listDrivers = Lookup<ListDriversFunction>(m_listing, "ListDrivers");
  m_takeRecords = Lookup<TakeRecordsFunction>(m_listing, "TakeRecords");
}

FreshLibrary::~FreshLibrary() noexcept(false) {
  FreeLibrary(m_listing);
  RequireUnloaded();
}

HMODULE FreshLibrary::Module() const { return GetModuleHandleA(Library); }

std::vector<Record> FreshLibrary::TakeRecords() {
  std::vector<Record> records;
  m_takeRecords(records);
  return records;
}

}  // namespace bench
