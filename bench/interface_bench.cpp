// What driverinventory.dll costs beyond the inventory that is linked into it, on the machine of benchmachine.
#include <windows.h>

#include <driverinventory.h>

#include <stdexcept>
#include <string_view>

#include "figures.h"
#include "libraryguest.h"

namespace {

void Require(bool isTrue, const char* otherwise) {
  if (!isTrue) throw std::runtime_error(otherwise);
}

double InventorySeconds() {
  const test::LibraryGuest guest("benchinventory.dll");
  const auto collect = guest.Lookup<std::size_t()>("CollectInventory");
  std::size_t records = 0;
  const double seconds = bench::Seconds([&] { records = collect(); });
  Require(records > 500, "this is no machine of benchmachine");
  return seconds;
}

/// The library, loaded for each measurement, so that nothing is cached.
class Interface {
 public:
  Interface() : m_module(LoadLibraryA("driverinventory.dll")) { Require(m_module != nullptr, "it cannot be loaded"); }
  ~Interface() { FreeLibrary(m_module); }
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;

  template <typename Function>
  Function* Lookup(const char* name) const {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
  }

 private:
  HMODULE m_module;
};

double InterfaceSeconds() {
  const Interface library;
  const auto collect = library.Lookup<decltype(driverinventory_collect)>("driverinventory_collect");
  const auto count = library.Lookup<decltype(driverinventory_count)>("driverinventory_count");
  driverinventory* inventory = nullptr;
  const double seconds = bench::Seconds([&] { collect(nullptr, &inventory); });
  std::size_t records = 0;
  Require(count(inventory, &records) == DRIVERINVENTORY_OK && records > 500, "this is no machine of benchmachine");
  library.Lookup<decltype(driverinventory_release)>("driverinventory_release")(inventory);
  return seconds;
}

constexpr int Calls = 1'000'000;

/// Seconds of one call of `call`, of many.
template <typename Call>
double SecondsOfACall(const Call& call) {
  return bench::Seconds([&] {
           for (int i = 0; i < Calls; ++i) call(static_cast<std::size_t>(i));
         }) /
         Calls;
}

/// Of a text, beyond a function of a DLL that does nothing but return.
double GetterSeconds() {
  const Interface library;
  const std::string_view snapshot =
      R"({"kind":"driverlist snapshot","schema_version":2,"drivers":[{"kind":"service","service":"a","name":"b"}]})";
  driverinventory* inventory = nullptr;
  library.Lookup<decltype(driverinventory_read)>("driverinventory_read")(snapshot.data(), snapshot.size(), &inventory);
  const auto nothing = library.Lookup<decltype(driverinventory_interface_version)>("driverinventory_interface_version");
  const auto text = library.Lookup<decltype(driverinventory_text)>("driverinventory_text");
  const int32_t name = library.Lookup<decltype(driverinventory_find_member)>("driverinventory_find_member")("name");
  const char* found = nullptr;
  std::size_t length = 0;
  const double bare = SecondsOfACall([&](std::size_t) { nothing(); });
  const double seconds = SecondsOfACall([&](std::size_t) { text(inventory, 0, name, &found, &length); });
  Require(length == 1, "the getter finds nothing");
  library.Lookup<decltype(driverinventory_release)>("driverinventory_release")(inventory);
  return seconds - bare;
}

void AddFigures() {
  bench::AddComparison({"Inventory through driverinventory.dll over the library linked in", "ms", 1.05, "library",
                        &InventorySeconds, "interface", &InterfaceSeconds});
  bench::AddValue("driverinventory_text beyond a call of a DLL, at most 50 ns", "ns", &GetterSeconds);
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
