#include "uniquedrivers.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>

#include "devicediscovery.h"
#include "logcapture.h"
#include "records.h"

using namespace Orvane;
using test::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

DriverData Record(const std::string& name, const std::string& version) {
  DriverData driver;
  driver.name = name;
  driver.file_version = version;
  return driver;
}

std::vector<std::string> Unique(std::vector<DriverData> drivers) {
  SortAndRemoveDuplicates(drivers);
  std::vector<std::string> texts;
  for (const DriverData& driver : drivers) texts.push_back(driver.name + " " + driver.file_version);
  return texts;
}

TEST(UniqueDrivers, AreOrderedByNameAsBytes) {
  EXPECT_THAT(Unique({Record("b", "1"), Record("\xE4", "1"), Record("B", "1"), Record("", "1"), Record("a", "1")}),
              ElementsAre(" 1", "B 1", "a 1", "b 1", "\xE4 1"));
  EXPECT_THAT(Unique({}), IsEmpty());
}

TEST(UniqueDrivers, KeepTheOldestOfEachName) {
  EXPECT_THAT(
      Unique({Record("b", "1.10"), Record("a", "3"), Record("b", "1.2"), Record("a", "0a"), Record("b", "1.2.0")}),
      ElementsAre("a 3", "b 1.2"));
  EXPECT_THAT(Unique({Record("a", "N/A"), Record("a", "99")}), ElementsAre("a 99"));
  EXPECT_THAT(Unique({Record("a", "1"), Record("a", "")}), ElementsAre("a "));
}

TEST(UniqueDrivers, KeepTheFieldsOfTheRecord) {
  DriverData kept = Record("a", "1");
  kept.path = "path";
  kept.reserved_list = {"x"};
  kept.found_by_device = 1;
  std::vector<DriverData> drivers = {Record("a", "2"), kept, Record("b", "1")};
  SortAndRemoveDuplicates(drivers);
  EXPECT_THAT(test::Described(drivers),
              ElementsAre("name=a; path=path; file_version=1; reserved_list=x; found_by_device=1",
                          "name=b; file_version=1; found_by_device=0"));
}

TEST(UniqueDrivers, AreCountedBeforeAndAfter) {
  test::LogCapture log;
  Unique({Record("a", "1"), Record("b", "1"), Record("a", "2")});
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{4, "driverlist size before erase unique:3"},
                                      LogLine{4, "driverlist size after erase unique:2"}));
}

// The order of versions has cycles; whatever it says, the result is made of the records that were there, one per name,
// and where a version is before all others of its name, it is kept.
TEST(UniqueDrivers, StayWithinTheirRecordsWhateverTheVersionsSay) {
  const std::vector<std::string> alphabet = {"1g",  "9",  "10", "a", "g", "0x1", "ff", "n/a", "", "8000000000000000",
                                             "1 2", "1.", "-1"};
  std::mt19937 random(12345);
  for (int round = 0; round < 20; ++round) {
    std::vector<DriverData> drivers;
    std::set<std::string> given;
    std::set<std::string> names;
    for (int i = 0; i < 5000; ++i) {
      const std::string name(1, static_cast<char>('a' + random() % 5));
      std::string version = alphabet[random() % alphabet.size()];
      if (random() % 2 == 0) version += "." + alphabet[random() % alphabet.size()];
      drivers.push_back(Record(name, version));
      drivers.back().path = std::to_string(i);
      given.insert(name + "|" + version + "|" + std::to_string(i));
      names.insert(name);
    }
    SortAndRemoveDuplicates(drivers);
    ASSERT_EQ(drivers.size(), names.size());
    for (const DriverData& driver : drivers) {
      EXPECT_EQ(given.count(driver.name + "|" + driver.file_version + "|" + driver.path), 1u)
          << "a record was invented";
    }
    EXPECT_TRUE(std::is_sorted(drivers.begin(), drivers.end()));
  }
}

TEST(UniqueDrivers, KeepAVersionThatIsBeforeAllOthersAmongCycles) {
  std::vector<DriverData> drivers = {Record("a", "1g"), Record("a", "9"), Record("a", "10"), Record("a", "0")};
  for (int i = 0; i < 24; ++i) {
    EXPECT_THAT(Unique(drivers), ElementsAre("a 0"));
    std::next_permutation(drivers.begin(), drivers.end(),
                          [](const DriverData& a, const DriverData& b) { return a.file_version < b.file_version; });
  }
}

// "1g" is before "9", "9" before "10", and "10" before "1g": which one is kept depends on where they stand.
TEST(UniqueDrivers, AreComparedAsTheyStandWhereVersionsRunInACircle) {
  EXPECT_THAT(Unique({Record("a", "9"), Record("a", "10"), Record("a", "1g")}), ElementsAre("a 1g"));
  EXPECT_THAT(Unique({Record("a", "10"), Record("a", "1g"), Record("a", "9")}), ElementsAre("a 9"));
  EXPECT_THAT(Unique({Record("a", "1g"), Record("a", "9"), Record("a", "10")}), ElementsAre("a 10"));
}

TEST(DriverBaseName, EndsBeforeTheFirstExtensionThatOccurs) {
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("e1000.SYS"), "e1000");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("E1000.Inf"), "E1000");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("a.sys.inf"), "a.sys");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("x.inf.sys"), "x");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("a.sys.sys"), "a");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("a.system"), "a") << "no test of the end";
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("a.information.sys"), "a");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName(".sys"), "");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("sys"), "sys");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("a.dll"), "a.dll");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName(""), "");
  EXPECT_EQ(DeviceDiscovery::DriverBaseName("\xC4\xE4.sys"), "\xC4\xE4");
}

}  // namespace
