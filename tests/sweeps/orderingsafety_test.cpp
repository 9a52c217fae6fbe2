// The order of versions is no strict weak order: lists of any content are sorted and merged within their bounds all the
// same.
#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <new>
#include <random>
#include <set>

#include "driverinfo.h"
#include "failingallocation.h"
#include "records.h"
#include "scratchmachine.h"
#include "uniquedrivers.h"

namespace {

using Orvane::DriverData;

constexpr std::size_t Size = 100'000;

/// Components of versions that are before one another in circles: "1g" is before "9", "9" before "10", and "10" before
/// "1g".
const std::vector<std::string> Components = {"1g", "9", "10", "", "G", "0a", "a", "8000000000000000", "7", "08"};

/// Few names; one of them is that of a device of every Wine machine.
const std::vector<std::string> Names = {"a.sys", "b.sys", "c.sys", "0000-0000-0000-0000_nodriver#", "", "z.sys"};

DriverData Driver(const std::string& name, const std::string& version) {
  DriverData driver;
  driver.name = name;
  driver.file_version = version;
  return driver;
}

/// Drivers with a number of their own each, so that no two are alike.
class Drivers {
 public:
  explicit Drivers(unsigned seed) : m_random(seed) {
    for (std::size_t i = 0; i < Size; ++i) {
      DriverData driver = Driver(Any(Names), Any(Components));
      for (std::size_t more = m_random() % 3; more > 0; --more) driver.file_version += "." + Any(Components);
      driver.size = std::to_string(i);
      m_drivers.push_back(driver);
    }
  }

  const std::vector<DriverData>& All() const { return m_drivers; }

  /// The one that `driver` was made from; a default record for one that is not of these.
  DriverData Original(const DriverData& driver) const {
    const std::size_t number = driver.size.empty() ? Size : std::stoul(driver.size);
    return number < Size ? m_drivers[number] : DriverData();
  }

 private:
  std::string Any(const std::vector<std::string>& texts) { return texts[m_random() % texts.size()]; }

  std::mt19937 m_random;
  std::vector<DriverData> m_drivers;
};

std::set<std::string> NamesOf(const std::vector<DriverData>& drivers) {
  std::set<std::string> names;
  for (const DriverData& driver : drivers) names.insert(driver.name);
  return names;
}

bool IsBefore(const DriverData& a, const DriverData& b) { return a.name < b.name; }

/// One record per name, in order, each of them one of `drivers` as it was.
void ExpectOneOfEach(const std::vector<DriverData>& listed, const Drivers& drivers,
                     const std::set<std::string>& names) {
  EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end(), IsBefore));
  EXPECT_EQ(NamesOf(listed), names);
  EXPECT_EQ(listed.size(), names.size());
  for (const DriverData& driver : listed) EXPECT_EQ(test::Described(driver), test::Described(drivers.Original(driver)));
}

TEST(OrderingSafety, TheVersionsRunInCircles) {
  EXPECT_TRUE(Driver("a", "1g") < Driver("a", "9"));
  EXPECT_TRUE(Driver("a", "9") < Driver("a", "10"));
  EXPECT_TRUE(Driver("a", "10") < Driver("a", "1g"));
}

TEST(OrderingSafety, InventsNoRecord) {
  for (const unsigned seed : {1u, 2u, 3u}) {
    const Drivers drivers(seed);
    std::vector<DriverData> listed = drivers.All();
    Orvane::SortAndRemoveDuplicates(listed);
    ExpectOneOfEach(listed, drivers, NamesOf(drivers.All()));
  }
}

TEST(OrderingSafety, InventsNoRecordInAnyArrangement) {
  const Drivers drivers(4);
  std::vector<std::vector<DriverData>> arrangements(4, drivers.All());
  std::stable_sort(arrangements[0].begin(), arrangements[0].end(), IsBefore);
  std::stable_sort(arrangements[1].rbegin(), arrangements[1].rend(), IsBefore);
  std::stable_sort(arrangements[2].begin(), arrangements[2].end(),
                   [](const DriverData& a, const DriverData& b) { return a.file_version < b.file_version; });
  for (DriverData& driver : arrangements[3]) driver.name = "one name";
  for (std::vector<DriverData>& listed : arrangements) {
    const std::set<std::string> names = NamesOf(listed);
    Orvane::SortAndRemoveDuplicates(listed);
    EXPECT_EQ(NamesOf(listed), names);
    EXPECT_EQ(listed.size(), names.size());
    for (DriverData& driver : listed) {
      if (driver.name == "one name") driver.name = drivers.Original(driver).name;
      EXPECT_EQ(test::Described(driver), test::Described(drivers.Original(driver)));
    }
  }
}

/// Where versions are plain numbers their order is one, and the oldest stays.
TEST(OrderingSafety, KeepsTheOldestOfManyVersions) {
  std::vector<DriverData> drivers;
  std::map<std::string, std::size_t> oldest;
  std::mt19937 random(5);
  for (std::size_t i = 0; i < Size; ++i) {
    const std::string& name = Names[random() % Names.size()];
    const std::size_t version = 1 + random() % 1'000'000;
    drivers.push_back(Driver(name, std::to_string(version)));
    const auto known = oldest.emplace(name, version).first;
    known->second = std::min(known->second, version);
  }
  Orvane::SortAndRemoveDuplicates(drivers);
  std::map<std::string, std::size_t> kept;
  for (const DriverData& driver : drivers) kept[driver.name] = std::stoul(driver.file_version);
  EXPECT_EQ(kept, oldest);
}

/// Comparing these versions needs memory. A sort that compares them has a record in its hand when there is no more.
TEST(OrderingSafety, LosesNoRecordWhenMemoryRunsOut) {
  std::vector<DriverData> drivers;
  for (std::size_t i = 0; i < 40; ++i) {
    drivers.push_back(Driver(Names[i % 2], std::string(100, '0') + std::to_string(7 * i % 40)));
  }
  const std::vector<std::string> all = test::Described(drivers);
  std::size_t failures = 0;
  for (bool isDone = false; !isDone; ++failures) {
    std::vector<DriverData> listed = drivers;
    try {
      const test::FailingAllocation failing(failures);
      Orvane::SortAndRemoveDuplicates(listed);
      isDone = true;
    } catch (const std::bad_alloc&) {
      ASSERT_THAT(test::Described(listed), testing::UnorderedElementsAreArray(all)) << "behind " << failures;
    }
  }
  EXPECT_GT(failures, 40u) << "versions are compared";
}

class OrderingSafetyOfListings : public test::ScratchMachine {
 protected:
  /// What the machine itself gives, in a list that the host had nothing in.
  std::vector<DriverData> ListMachine(Orvane::DriverInfoSetType mode) {
    std::vector<DriverData> machine;
    m_info.list_drivers(machine, mode);
    return machine;
  }

  Orvane::DriverInfo m_info;
};

TEST_F(OrderingSafetyOfListings, MergesTheRecordsOfTheHost) {
  const std::vector<DriverData> machine = ListMachine(Orvane::All);
  const Drivers drivers(6);
  std::vector<DriverData> listed = drivers.All();
  EXPECT_EQ(m_info.list_drivers(listed, Orvane::All), 0);
  std::set<std::string> names = NamesOf(machine);
  names.merge(NamesOf(drivers.All()));
  EXPECT_EQ(NamesOf(listed), names);
  EXPECT_EQ(listed.size(), names.size());
  const std::vector<std::string> ofMachine = test::Described(machine);
  for (const DriverData& driver : listed) {
    const std::string described = test::Described(driver);
    const bool isOfMachine = std::count(ofMachine.begin(), ofMachine.end(), described) > 0;
    EXPECT_TRUE(isOfMachine || described == test::Described(drivers.Original(driver))) << described;
  }
}

TEST_F(OrderingSafetyOfListings, SortsTheRecordsOfTheHostAmongTheDevices) {
  const Drivers drivers(7);
  std::vector<DriverData> listed = drivers.All();
  EXPECT_EQ(m_info.list_drivers_by_device(listed), 0);
  EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end(), IsBefore));
  EXPECT_EQ(listed.size(), NamesOf(listed).size());
  for (DriverData driver : listed) {
    EXPECT_EQ(driver.found_by_device, 1);
    if (driver.size.empty()) continue;
    driver.found_by_device = 0;
    EXPECT_EQ(test::Described(driver), test::Described(drivers.Original(driver)));
  }
}

}  // namespace
