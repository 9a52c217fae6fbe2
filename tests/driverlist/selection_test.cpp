#include "commands/selection.h"

#include <gmock/gmock.h>

using namespace driverlist;
using inventory::Kind;
using inventory::ListedDriver;
using inventory::Record;
using inventory::Records;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Record Service(const std::string& name, const std::string& version, const std::string& state = "") {
  Record record;
  record.name = name;
  record.version = version;
  record.state = state;
  return record;
}

std::vector<std::string> Selected(const Records& records, const Selection& selection) {
  std::vector<std::string> names;
  for (const std::size_t row : SelectedRows(TableOf(records), selection)) names.push_back(records[row].name);
  return names;
}

std::vector<std::string> Selected(const std::vector<ListedDriver>& drivers, const Selection& selection) {
  std::vector<std::string> names;
  for (const std::size_t row : SelectedRows(TableOf(drivers), selection)) names.push_back(drivers[row].name);
  return names;
}

inventory::Column Member(const char* name) { return *inventory::FindMember(name); }

inventory::Column Field(const char* name) {
  const Table table = TableOf(std::vector<ListedDriver>());
  return table.columns.at(IndexOf(table.columns, name));
}

Condition Where(const char* member, const std::string& pattern) { return {Member(member), pattern}; }

Selection SortedBy(const inventory::Column& column) {
  Selection selection;
  selection.sort = column;
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
  EXPECT_THAT(Selected({Service("b", ""), Service("a", "")}, {}), ElementsAre("b", "a"));
}

TEST(Selection, MatchesAnyColumn) {
  Record package = Service("c", "3");
  package.kind = Kind::Package;
  package.files = {"x", "running"};
  Selection selection;
  selection.match = "*running";
  EXPECT_THAT(Selected({Service("a", "1", "Running"), Service("b", "2", "Stopped"), package}, selection),
              ElementsAre("a", "c"));
  selection.match = "x;*";
  EXPECT_THAT(Selected({Service("a", "1"), package}, selection), ElementsAre("c")) << "several texts are one";
}

TEST(Selection, NeedsAllConditions) {
  Record gone = Service("gone.sys", "");
  gone.image_missing = true;
  gone.size = 1024;
  const Records records = {Service("a.sys", "1", "Running"), Service("b.sys", "1", "Stopped"), gone,
                           Service("a.sys", "2", "Running")};
  Selection selection;
  selection.conditions = {Where("name", "a*"), Where("state", "running"), Where("version", "1")};
  EXPECT_THAT(SelectedRows(TableOf(records), selection), ElementsAre(0u));
  selection.conditions = {Where("state", "")};
  EXPECT_THAT(Selected(records, selection), ElementsAre("gone.sys")) << "an unknown state";
  selection.conditions = {Where("image_missing", "true"), Where("size", "10?4"), Where("kind", "service")};
  EXPECT_THAT(Selected(records, selection), ElementsAre("gone.sys"));
  selection.conditions = {Where("image_missing", "true"), Where("name", "a*")};
  EXPECT_THAT(Selected(records, selection), IsEmpty());
}

TEST(Selection, AndsConditionsAndMatch) {
  Selection selection;
  selection.match = "*.sys";
  selection.conditions = {Where("version", "2")};
  EXPECT_THAT(Selected({Service("a.sys", "1"), Service("b.sys", "2"), Service("c.inf", "2")}, selection),
              ElementsAre("b.sys"));
}

TEST(Selection, MatchesTextsOfEveryScript) {
  Selection selection;
  selection.match = "\u0422\u0415\u0421\u0422.*";
  EXPECT_THAT(Selected({Service("\u0442\u0435\u0441\u0442.sys", ""), Service("test.sys", "")}, selection),
              ElementsAre("\u0442\u0435\u0441\u0442.sys"));
}

TEST(Selection, ChoosesFromAListingOfTheLibrary) {
  ListedDriver device;
  device.name = "device";
  device.found_by_device = 1;
  Selection selection;
  selection.conditions = {{Field("found_by_device"), "0"}};
  EXPECT_THAT(Selected({device, ListedDriver()}, selection), ElementsAre(""));
}

TEST(Sort, OrdersVersionsByTheirKeys) {
  EXPECT_THAT(
      Selected({Service("ten", "10.0"), Service("nine", "9.9"), Service("unknown", ""), Service("alpha", "a.1")},
               SortedBy(Member("version"))),
      ElementsAre("unknown", "nine", "alpha", "ten"))
      << "components are hexadecimal";
}

TEST(Sort, TakesNoVersionForAnUnknownOne) {
  ListedDriver known;
  known.name = "known";
  known.file_version = "1.0";
  ListedDriver without;
  without.name = "without";
  without.file_version = "N/A";
  EXPECT_THAT(Selected({known, without}, SortedBy(Field("file_version"))), ElementsAre("without", "known"));
}

TEST(Sort, OrdersNumbersAsNumbers) {
  Records records;
  for (const std::uint64_t size : {1000u, 999u, 0u, 10u}) {
    records.push_back(Service(std::to_string(size), ""));
    records.back().size = size;
  }
  records.push_back(Service("unknown", ""));
  EXPECT_THAT(Selected(records, SortedBy(Member("size"))), ElementsAre("unknown", "0", "10", "999", "1000"));
}

TEST(Sort, OrdersTheSizesOfAListingAsNumbers) {
  std::vector<ListedDriver> drivers;
  for (const char* const size : {"1000", "999", "", "0"}) {
    drivers.emplace_back();
    drivers.back().name = drivers.back().size = size;
  }
  EXPECT_THAT(Selected(drivers, SortedBy(Field("size"))), ElementsAre("", "0", "999", "1000"));
}

TEST(Sort, OrdersTimesAndOtherTextsByTheirBytesAndKeepsEquals) {
  EXPECT_THAT(
      Selected({Service("b", "1"), Service("a", "2"), Service("B", "3"), Service("a2", "4")}, SortedBy(Member("name"))),
      ElementsAre("B", "a", "a2", "b"));
  EXPECT_THAT(
      Selected({Service("b", "", "x"), Service("a", "", "x"), Service("c", "", "A")}, SortedBy(Member("state"))),
      ElementsAre("c", "b", "a"));
  Records records = {Service("new", ""), Service("unknown", ""), Service("old", "")};
  records[0].image_time = "2024-05-06T07:08:09Z";
  records[2].image_time = "2023-12-31T23:59:59Z";
  EXPECT_THAT(Selected(records, SortedBy(Member("image_time"))), ElementsAre("unknown", "old", "new"));
}

TEST(Sort, PutsFalseBeforeTrue) {
  Records records = {Service("gone", ""), Service("there", "")};
  records[0].image_missing = true;
  EXPECT_THAT(Selected(records, SortedBy(Member("image_missing"))), ElementsAre("there", "gone"));
}

TEST(Part, HasTheRowsAndColumnsAskedForInTheirOrder) {
  const Table part = PartOf(TableOf(Records{Service("a", "1", "x"), Service("b", "2", "y"), Service("c", "3", "z")}),
                            {2, 0}, {Member("state"), Member("name")});
  ASSERT_EQ(part.columns.size(), 2u);
  EXPECT_EQ(part.columns[0].name, "state");
  EXPECT_EQ(part.columns[1].name, "name");
  std::vector<std::string> texts;
  for (const auto& row : part.rows) {
    for (const Cell& cell : row) texts.push_back(inventory::TextOf(cell.value));
  }
  EXPECT_THAT(texts, ElementsAre("z", "c", "x", "a"));
}

}  // namespace
