// What comparing two versions costs, and what of it their splits are.
#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <random>
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

void AddFigures() {
  bench::AddValue("CompareVersion, per call", "ns", &CompareSeconds);
  bench::AddValue("The two splits of a CompareVersion", "ns", &SplitsSeconds);
  bench::AddValue("Sort of 100,000 records of one name by operator<, per comparison", "ns", &SortSeconds);
  bench::AddValue("Oldest of 100,000 records of one name in a listing, per record", "ns", &UniqueSeconds);
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
