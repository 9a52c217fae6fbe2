// The inventory of a machine against the library's two listings and the questions that the inventory asks beyond them,
// on the machine of benchmachine.
#include <windows.h>

#include <stdexcept>

#include "bare.h"
#include "figures.h"
#include "freshlibrary.h"
#include "libraryguest.h"

namespace {

enum Mode { ByDevice = 0, Registered = 1 };

void Require(bool isTrue, const char* otherwise) {
  if (!isTrue) throw std::runtime_error(otherwise);
}

double BareSeconds() {
  bench::FreshLibrary library;
  return bench::Seconds([&library] {
    library.List(ByDevice);
    library.List(Registered);
    Require(bench::bare::AskForTheInventory() > 500, "this is no machine of benchmachine");
  });
}

double InventorySeconds() {
  const test::LibraryGuest guest("benchinventory.dll");
  const auto collect = guest.Lookup<std::size_t()>("CollectInventory");
  std::size_t records = 0;
  const double seconds = bench::Seconds([&] { records = collect(); });
  Require(records > 500, "this is no machine of benchmachine");
  return seconds;
}

void AddFigures() {
  bench::AddComparison({"Inventory over two listings and its own questions", "ms", 1.10, "bare", &BareSeconds,
                        "inventory", &InventorySeconds});
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
