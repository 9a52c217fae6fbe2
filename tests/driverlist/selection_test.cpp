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

constexpr char Now[] = "2024-06-01T00:00:00Z";

std::vector<std::size_t> SelectedRows(const Table& table, const Selection& selection) {
  std::vector<std::size_t> rows = ChosenRows(table, selection, Now);
  SortAndCut(table, selection, rows);
  return rows;
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

Selection Where(const std::vector<std::string>& texts) {
  Selection selection;
  std::vector<inventory::Condition>& conditions = selection.conditions.emplace_back();
  for (const std::string& text : texts) conditions.emplace_back(text, inventory::RecordColumns());
  return selection;
}

Selection SortedBy(const inventory::Column& column, bool isDescending = false) {
  Selection selection;
  selection.sort = {{column, isDescending}};
  return selection;
}

TEST(Selection, OfNothingIsEverythingInItsOrder) {
  EXPECT_THAT(Selected({Service("b", ""), Service("a", "")}, {}), ElementsAre("b", "a"));
}

TEST(Selection, FindsATextInAnyColumn) {
  Record package = Service("c", "3");
  package.kind = Kind::Package;
  package.files = {"x", "overrunning.sys"};
  Selection selection;
  selection.match = "RUNNING";
  EXPECT_THAT(Selected({Service("a", "1", "Running"), Service("b", "2", "Stopped"), package}, selection),
              ElementsAre("a", "c"));
  selection.match = "run*";
  EXPECT_THAT(Selected({Service("a", "1", "Running"), Service("b", "2", "Stopped"), package}, selection),
              ElementsAre("a"))
      << "with wildcards it is the whole text";
}

TEST(Selection, NeedsAllConditions) {
  Record gone = Service("gone.sys", "");
  gone.image_missing = true;
  gone.size = 1024;
  const Records records = {Service("a.sys", "1", "Running"), Service("b.sys", "1", "Stopped"), gone,
                           Service("a.sys", "2", "Running")};
  EXPECT_THAT(SelectedRows(TableOf(records), Where({"name=a*", "state=running", "version=1"})), ElementsAre(0u));
  EXPECT_THAT(Selected(records, Where({"state="})), ElementsAre("gone.sys")) << "an unknown state";
  EXPECT_THAT(Selected(records, Where({"image_missing=true", "size=10?4", "kind=service"})), ElementsAre("gone.sys"));
  EXPECT_THAT(Selected(records, Where({"image_missing=true", "name=a*"})), IsEmpty());
}

TEST(Selection, NeedsOneAlternative) {
  Selection selection = Where({"name=a*", "version<2"});
  selection.conditions.push_back(Where({"state=stopped"}).conditions.front());
  EXPECT_THAT(Selected({Service("a1", "1"), Service("a2", "2"), Service("b", "2", "Stopped")}, selection),
              ElementsAre("a1", "b"));
}

TEST(Selection, CountsAgesFromTheTimeOfTheListing) {
  Records records = {Service("old", ""), Service("new", "")};
  records[0].image_time = "2024-05-01T00:00:00Z";
  records[1].image_time = "2024-05-20T00:00:00Z";
  EXPECT_THAT(Selected(records, Where({"image_time>30d"})), ElementsAre("old"));
}

TEST(Selection, AndsConditionsAndMatch) {
  Selection selection = Where({"version=2"});
  selection.match = ".sys";
  EXPECT_THAT(Selected({Service("a.sys", "1"), Service("b.sys", "2"), Service("c.inf", "2")}, selection),
              ElementsAre("b.sys"));
}

TEST(Selection, KeepsTheFirst) {
  Selection selection = SortedBy(Member("name"));
  selection.first = 2;
  EXPECT_THAT(Selected({Service("c", ""), Service("a", ""), Service("b", "")}, selection), ElementsAre("a", "b"));
  selection.first = 9;
  EXPECT_THAT(Selected({Service("c", ""), Service("a", "")}, selection), ElementsAre("a", "c"));
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
  const Table table = TableOf(std::vector<ListedDriver>());
  selection.conditions = {{inventory::Condition("found_by_device=0", table.columns)}};
  EXPECT_THAT(Selected({device, ListedDriver()}, selection), ElementsAre(""));
}

TEST(Sort, OrdersVersionsByTheirKeys) {
  EXPECT_THAT(
      Selected({Service("ten", "10.0"), Service("nine", "9.9"), Service("unknown", ""), Service("alpha", "a.1")},
               SortedBy(Member("version"))),
      ElementsAre("unknown", "nine", "alpha", "ten"))
      << "components are hexadecimal";
}

TEST(Sort, OrdersProductVersionsAsVersions) {
  Records records = {Service("ten", ""), Service("nine", "")};
  records[0].product_version = "10.0";
  records[1].product_version = "9.9";
  EXPECT_THAT(Selected(records, SortedBy(Member("product_version"))), ElementsAre("nine", "ten"));
  std::vector<ListedDriver> drivers(2);
  drivers[0].name = drivers[0].product_version = "10.0";
  drivers[1].name = drivers[1].product_version = "9.9";
  EXPECT_THAT(Selected(drivers, SortedBy(Field("product_version"))), ElementsAre("9.9", "10.0"));
}

TEST(Sort, KeepsTheOrderOfManyEqualRows) {
  Records records;
  std::vector<std::string> names;
  for (int i = 0; i < 100; ++i) {
    names.push_back("driver " + std::to_string(i));
    records.push_back(Service(names.back(), "1.0"));
  }
  EXPECT_EQ(Selected(records, SortedBy(Member("version"))), names);
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

TEST(Sort, TurnsTheOrderRound) {
  EXPECT_THAT(Selected({Service("nine", "9.9"), Service("unknown", ""), Service("ten", "10.0")},
                       SortedBy(Member("version"), true)),
              ElementsAre("ten", "nine", "unknown"));
}

TEST(Sort, OrdersBySeveralColumnsTheFirstFirst) {
  Selection selection;
  selection.sort = {{Member("state"), true}, {Member("version"), false}};
  EXPECT_THAT(Selected({Service("a", "10", "Running"), Service("b", "2", "Stopped"), Service("c", "9", "Running"),
                        Service("d", "1", "Stopped"), Service("e", "2", "Stopped")},
                       selection),
              ElementsAre("d", "b", "e", "c", "a"));
}

std::vector<std::string> Lines(const Table& table) {
  std::vector<std::string> lines;
  for (const auto& row : table.rows) {
    std::string& line = lines.emplace_back();
    for (const Cell& cell : row) line += (line.empty() ? "" : " ") + inventory::TextOf(cell.value);
  }
  return lines;
}

TEST(Groups, CountRowsOfEqualValuesTheLargestFirst) {
  const Table table = TableOf(Records{Service("a", "2", "Stopped"), Service("b", "1", "Running"),
                                      Service("c", "10", "Running"), Service("d", "9", "Paused"), Service("e", "9")});
  const Table groups = Grouped(table, {0, 1, 2, 3, 4}, {Member("state")});
  ASSERT_EQ(groups.columns.size(), 2u);
  EXPECT_EQ(groups.columns[1].name, "count");
  EXPECT_THAT(Lines(groups), ElementsAre("Running 2", "1", "Paused 1", "Stopped 1"));
  EXPECT_THAT(Lines(Grouped(table, {0, 1}, {Member("state"), Member("kind")})),
              ElementsAre("Running service 1", "Stopped service 1"));
  EXPECT_THAT(Lines(Grouped(table, {0, 2, 3, 4}, {Member("version")})), ElementsAre("9 2", "2 1", "10 1"))
      << "groups of one size are ordered as versions";
  EXPECT_THAT(Lines(Grouped(table, {}, {Member("state")})), IsEmpty());
}

TEST(Groups, KeepValuesOfTheirTypes) {
  Record record = Service("a", "");
  record.size = 7;
  record.image_missing = true;
  const Table groups =
      Grouped(TableOf(Records{record}), {0}, {Member("size"), Member("image_missing"), Member("name")});
  EXPECT_EQ(groups.rows.at(0).at(0).value, inventory::Value(std::uint64_t{7}));
  EXPECT_EQ(groups.rows.at(0).at(1).value, inventory::Value(true));
  EXPECT_EQ(groups.rows.at(0).at(2).tone, Tone::Plain) << "a group is neither good nor bad";
  EXPECT_EQ(groups.rows.at(0).at(3).value, inventory::Value(std::uint64_t{1}));
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
