// What comparing two versions costs, and what of it their splits are; what merging and sorting a listing costs over
// sorting its names.
#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <cstdio>
#include <iterator>
#include <random>
#include <string_view>
#include <vector>

#include "driverinfo.h"
#include "figures.h"
#include "uniquedrivers.h"
#include "versioncompare.h"

namespace {

using Orvane::DriverData;
using Drivers = std::vector<DriverData>;

/// Versions that differ in their last component only, in no order: each comparison goes to the end.
std::vector<std::string> Versions(int count) {
  std::vector<std::string> versions;
  for (int i = 0; i < count; ++i) versions.push_back("10.0.22621." + std::to_string(i));
  std::shuffle(versions.begin(), versions.end(), std::mt19937(1));
  return versions;
}

const std::vector<std::string>& SomeVersions() {
  static const std::vector<std::string> versions = Versions(100000);
  return versions;
}

/// Seconds per call of `act` with two neighbouring versions.
template <typename Act>
double SecondsPerPair(Act act) {
  const std::vector<std::string>& versions = SomeVersions();
  const double seconds = bench::Seconds([&] {
    for (std::size_t i = 1; i < versions.size(); ++i) act(versions[i - 1], versions[i]);
  });
  return seconds / static_cast<double>(versions.size() - 1);
}

volatile std::size_t kept;

double CompareSeconds() {
  return SecondsPerPair([](const std::string& a, const std::string& b) {
    kept = static_cast<std::size_t>(Orvane::CompareVersion(a, b) + 1);
  });
}

void Split(const std::string& version) {
  std::vector<std::string> components;
  boost::algorithm::split(components, version, boost::algorithm::is_any_of(". "));
  kept = components.size();
}

double SplitsSeconds() {
  return SecondsPerPair([](const std::string& a, const std::string& b) {
    Split(a);
    Split(b);
  });
}

Drivers DriversOfOneName() {
  Drivers drivers(SomeVersions().size());
  for (std::size_t i = 0; i < drivers.size(); ++i) {
    drivers[i].name = "driver.sys";
    drivers[i].file_version = SomeVersions()[i];
  }
  return drivers;
}

/// Seconds per comparison of a sort by the exported order. These versions are numbers, of which it is one.
double SortSeconds() {
  Drivers drivers = DriversOfOneName();
  std::size_t comparisons = 0;
  const double seconds = bench::Seconds([&] {
    std::stable_sort(drivers.begin(), drivers.end(), [&](const DriverData& a, const DriverData& b) {
      ++comparisons;
      return a < b;
    });
  });
  return seconds / static_cast<double>(comparisons);
}

/// Seconds per record of what the listings do with records of one name: order by name, keep the oldest.
double UniqueSeconds() {
  Drivers drivers = DriversOfOneName();
  const auto count = static_cast<double>(drivers.size());
  return bench::Seconds([&] { Orvane::SortAndRemoveDuplicates(drivers); }) / count;
}

/// `count` records, each with a name of its own, in no order.
Drivers DriversNamed(const char* format, int first, int count) {
  Drivers drivers(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    char name[60];
    std::snprintf(name, sizeof(name), format, first + i);
    DriverData& driver = drivers[static_cast<std::size_t>(i)];
    driver.name = name;
    driver.description = "Driver of the sample component";
    driver.provider = "Sample maker";
    driver.file_version = "10.0.22621." + std::to_string(i);
  }
  std::shuffle(drivers.begin(), drivers.end(), std::mt19937(1));
  return drivers;
}

/// What a combined listing of `count` records merges: half of them are of devices, in order, as their listing is. Of
/// the others, one in four has the name of a device, and one in four that of another record.
struct Sources {
  explicit Sources(int count) : devices(DriversNamed("10EC-%08X-1028-0A5C_nodriver#", 0, count / 2)) {
    std::sort(devices.begin(), devices.end(), [](const DriverData& a, const DriverData& b) { return a.name < b.name; });
    for (Drivers more : {DriversNamed("10EC-%08X-1028-0A5C_nodriver#", 0, count / 8),
                         DriversNamed("driver%08X.sys", 0, count / 8), DriversNamed("driver%08X.sys", 0, count / 4)}) {
      std::move(more.begin(), more.end(), std::back_inserter(drivers));
    }
    std::shuffle(drivers.begin(), drivers.end(), std::mt19937(2));
  }

  Drivers devices;
  Drivers drivers;
};

double BareMergeSeconds(int count) {
  Sources sources(count);
  return bench::Seconds([&] {
    std::vector<std::string_view> names;
    for (const Drivers* const records : {&sources.drivers, &sources.devices}) {
      for (const DriverData& driver : *records) names.push_back(driver.name);
    }
    std::sort(names.begin(), names.end());
    kept = names.size();
    Drivers moved;
    moved.reserve(names.size());
    for (Drivers* const records : {&sources.drivers, &sources.devices}) {
      std::move(records->begin(), records->end(), std::back_inserter(moved));
    }
    kept = moved.size();
  });
}

double MergeSeconds(int count) {
  Sources sources(count);
  return bench::Seconds([&] {
    Orvane::MergeDevices(std::move(sources.devices), sources.drivers);
    kept = sources.drivers.size();
  });
}

void AddMerges() {
  for (const int count : {8000, 32000, 128000}) {
    bench::AddComparison(
        {"Merge and sort over a sort of the names and a move, " + std::to_string(count / 1000) + ",000", "ms", 2.0,
         "bare", [=] { return BareMergeSeconds(count); }, "merge", [=] { return MergeSeconds(count); }});
  }
}

void AddFigures() {
  bench::AddValue("CompareVersion, per call", "ns", &CompareSeconds);
  bench::AddValue("The two splits of a CompareVersion", "ns", &SplitsSeconds);
  bench::AddValue("Sort of 100,000 records of one name by operator<, per comparison", "ns", &SortSeconds);
  bench::AddValue("Oldest of 100,000 records of one name in a listing, per record", "ns", &UniqueSeconds);
  AddMerges();
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
