#include "selection.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "insertionsort.h"

using namespace driverlist;
using Orvane::DriverData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

DriverData Driver(const std::string& name, const std::string& version, const std::string& state = "") {
  DriverData driver;
  driver.name = name;
  driver.file_version = version;
  driver.state = state;
  return driver;
}

std::vector<std::string> Names(const std::vector<DriverData>& drivers) {
  std::vector<std::string> names;
  for (const DriverData& driver : drivers) names.push_back(driver.name);
  return names;
}

Condition Where(const char* field, const std::string& pattern) { return {*FindColumn(field), pattern}; }

Selection SortedBy(const char* field) {
  Selection selection;
  selection.sort = *FindColumn(field);
  return selection;
}

TEST(Pattern, IsForTheWholeText) {
  EXPECT_TRUE(MatchesPattern("nlnet.sys", "nlnet.sys"));
  EXPECT_FALSE(MatchesPattern("nlnet.sys", "nlnet"));
  EXPECT_FALSE(MatchesPattern("nlnet", "nlnet.sys"));
  EXPECT_TRUE(MatchesPattern("", ""));
  EXPECT_FALSE(MatchesPattern("a", ""));
  EXPECT_FALSE(MatchesPattern("", "a"));
}

TEST(Pattern, HasAStarForAnyCharacters) {
  for (const char* const pattern : {"*", "nl*", "*.sys", "*net*", "n*t*s", "**nlnet.sys**", "nlnet.sys*"}) {
    EXPECT_TRUE(MatchesPattern("nlnet.sys", pattern)) << pattern;
  }
  for (const char* const pattern : {"*x*", "net*", "*net", "n*x*s", "*nlnet.sys*s"}) {
    EXPECT_FALSE(MatchesPattern("nlnet.sys", pattern)) << pattern;
  }
  EXPECT_TRUE(MatchesPattern("abababac", "*abac")) << "the last place is the one";
  EXPECT_TRUE(MatchesPattern("", "*"));
}

TEST(Pattern, HasAQuestionMarkForOneCharacter) {
  EXPECT_TRUE(MatchesPattern("oem1.inf", "oem?.inf"));
  EXPECT_FALSE(MatchesPattern("oem12.inf", "oem?.inf"));
  EXPECT_FALSE(MatchesPattern("oem.inf", "oem?.inf"));
  EXPECT_FALSE(MatchesPattern("", "?"));
  EXPECT_TRUE(MatchesPattern("Ger\u00E4t \u4E2D", "ger?t ?")) << "a character has as many bytes as it has";
  EXPECT_TRUE(MatchesPattern("\u00E4\u00E4b", "*?b"));
}

TEST(Pattern, DoesNotLookAtCase) {
  EXPECT_TRUE(MatchesPattern("ACPI.sys", "acpi.SYS"));
  EXPECT_TRUE(MatchesPattern("GER\u00C4T \u0416", "ger\u00E4t \u0436"));
}

TEST(Pattern, TakesNoTimeForManyStars) {
  EXPECT_FALSE(MatchesPattern(std::string(5000, 'a'), "*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}

TEST(Selection, OfNothingIsEverythingInItsOrder) {
  EXPECT_THAT(Names(Select({Driver("b", ""), Driver("a", "")}, {})), ElementsAre("b", "a"));
}

TEST(Selection, MatchesAnyField) {
  DriverData list = Driver("c", "3");
  list.reserved_list = {"x", "running"};
  Selection selection;
  selection.match = "*running";
  EXPECT_THAT(Names(Select({Driver("a", "1", "Running"), Driver("b", "2", "Stopped"), list}, selection)),
              ElementsAre("a", "c"));
}

TEST(Selection, NeedsAllConditions) {
  const std::vector<DriverData> drivers = {Driver("a.sys", "1", "Running"), Driver("b.sys", "1", "Stopped"),
                                           Driver("a.inf", "1"), Driver("a.sys", "2", "Running")};
  Selection selection;
  selection.conditions = {Where("name", "a*"), Where("state", "running"), Where("file_version", "1")};
  const std::vector<DriverData> selected = Select(drivers, selection);
  EXPECT_THAT(Names(selected), ElementsAre("a.sys"));
  selection.conditions = {Where("state", "")};
  EXPECT_THAT(Names(Select(drivers, selection)), ElementsAre("a.inf")) << "an empty field";
  selection.conditions = {Where("found_by_device", "0"), Where("name", "c")};
  EXPECT_THAT(Names(Select(drivers, selection)), IsEmpty());
}

TEST(Selection, AndsConditionsAndMatch) {
  Selection selection;
  selection.match = "*.sys";
  selection.conditions = {Where("file_version", "2")};
  EXPECT_THAT(Names(Select({Driver("a.sys", "1"), Driver("b.sys", "2"), Driver("c.inf", "2")}, selection)),
              ElementsAre("b.sys"));
}

TEST(Selection, MatchesTextsOfTheCodePage) {
  if (GetACP() != 1252) GTEST_SKIP() << "the bytes are those of code page 1252";
  Selection selection;
  selection.match = "GER\u00C4T";
  EXPECT_THAT(Select({Driver("Ger\xE4t", "")}, selection), testing::SizeIs(1));
}

TEST(Sort, OrdersVersionsAsTheLibraryDoes) {
  EXPECT_THAT(Names(Select({Driver("ten", "10.0"), Driver("nine", "9.9"), Driver("none", ""), Driver("alpha", "a.1")},
                           SortedBy("file_version"))),
              ElementsAre("none", "nine", "alpha", "ten"))
      << "components are hexadecimal";
}

TEST(Sort, EndsWithVersionsWhoseOrderContradictsItself) {
  std::vector<DriverData> drivers;
  for (int i = 0; i < 300; ++i) {
    for (const char* const version : {"1g", "9", "10"}) drivers.push_back(Driver(std::to_string(i), version));
  }
  std::vector<std::string> before = Names(drivers);
  std::vector<std::string> after = Names(Select(drivers, SortedBy("file_version")));
  std::sort(before.begin(), before.end());
  std::sort(after.begin(), after.end());
  EXPECT_EQ(after, before);
}

TEST(Sort, OrdersSizesAsNumbersAndDatesAsDates) {
  DriverData a = Driver("a", "");
  DriverData b = Driver("b", "");
  DriverData c = Driver("c", "");
  DriverData none = Driver("none", "");
  a.size = "1000";
  b.size = "999";
  c.size = "0";
  a.date = "12/31/2020 23:59:59";
  b.date = "01/01/2021 ";
  c.date = "01/01/2021 00:00:01";
  EXPECT_THAT(Names(Select({a, b, c, none}, SortedBy("size"))), ElementsAre("none", "c", "b", "a"));
  EXPECT_THAT(Names(Select({c, b, a, none}, SortedBy("date"))), ElementsAre("none", "a", "b", "c"));
}

TEST(Sort, OrdersOtherFieldsByBytesAndKeepsEquals) {
  EXPECT_THAT(
      Names(Select({Driver("b", "1"), Driver("a", "2"), Driver("B", "3"), Driver("a2", "4")}, SortedBy("name"))),
      ElementsAre("B", "a", "a2", "b"));
  EXPECT_THAT(Names(Select({Driver("b", "", "x"), Driver("a", "", "x"), Driver("c", "", "A")}, SortedBy("state"))),
              ElementsAre("c", "b", "a"));
}

TEST(InsertionSort, SortsAndKeepsEqualsInTheirOrder) {
  std::vector<std::pair<int, int>> items = {{3, 0}, {1, 1}, {3, 2}, {2, 3}, {1, 4}};
  InsertionSort(items, [](const auto& a, const auto& b) { return a.first < b.first; });
  EXPECT_THAT(items, ElementsAre(std::pair(1, 1), std::pair(1, 4), std::pair(2, 3), std::pair(3, 0), std::pair(3, 2)));
}

}  // namespace
