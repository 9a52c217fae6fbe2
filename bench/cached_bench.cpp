// A listing from the cache against a plain copy of the same records, on the machine of benchmachine.
#include <vector>

#include "driverinfo.h"
#include "figures.h"

namespace {

using Drivers = std::vector<Orvane::DriverData>;

/// Seconds of one of so many calls of `act`, each with a vector of its own. Making and destroying the vectors does not
/// count.
template <typename Act>
double SecondsEach(Act act) {
  constexpr std::size_t calls = 100;
  std::vector<Drivers> results(calls);
  const double seconds = bench::Seconds([&] {
    for (Drivers& result : results) act(result);
  });
  return seconds / calls;
}

void AddCached(const char* name, Orvane::DriverInfoSetType mode) {
  static Orvane::DriverInfo info;
  Drivers records;
  info.list_drivers(records, mode);
  // The second answer is the cache's: the first one of the services has the chipset packages, too.
  records.clear();
  info.list_drivers(records, mode);
  bench::AddComparison({name, "us", 1.2, "copy",
                        [=] { return SecondsEach([&](Drivers& result) { result = records; }); }, "library",
                        [=] { return SecondsEach([&](Drivers& result) { info.list_drivers(result, mode); }); }});
}

void AddFigures() {
  AddCached("Registered from the cache", Orvane::Registered);
  AddCached("ByDevice from the cache", Orvane::ByDevice);
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
