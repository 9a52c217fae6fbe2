#include "comparison.h"

#include <gmock/gmock.h>

#include "diffformats.h"

using namespace driverlist;
using Orvane::DriverData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Records = std::vector<InventoryRecord>;

InventoryRecord Record(FoundBy foundBy, const std::string& name, const std::string& version,
                       const std::string& path = "", const std::string& state = "") {
  InventoryRecord record{foundBy, {}};
  record.driver.name = name;
  record.driver.file_version = version;
  record.driver.path = path;
  record.driver.state = state;
  return record;
}

InventoryRecord Package(const std::string& name, const std::string& version) {
  return Record(FoundBy::Package, name, version);
}

/// "upgraded package a.inf: file_version 1 -> 2; size 5 -> 6"
std::vector<std::string> Told(const Comparison& comparison) {
  std::vector<std::string> told;
  for (const Difference& difference : comparison.differences) {
    std::string changes;
    for (const FieldChange& change : difference.changes) {
      changes += (changes.empty() ? "" : "; ") + change.field + " " + change.before + " -> " + change.after;
    }
    told.push_back(DifferenceName(difference.kind) + " " + FoundByName(difference.foundBy) + " " + difference.name +
                   ": " + changes);
  }
  return told;
}

TEST(Comparison, OfTheSameIsNothing) {
  const Records records = {Package("a", "1"), Record(FoundBy::Service, "a", "1"), Package("b", "")};
  const Comparison comparison = Compare(records, records);
  EXPECT_THAT(comparison.differences, IsEmpty());
  EXPECT_EQ(comparison.same, 3u);
  EXPECT_EQ(Compare({}, {}).same, 0u);
}

TEST(Comparison, DoesNotLookAtTheOrder) {
  const Comparison comparison = Compare({Package("a", "1"), Package("b", "2")}, {Package("b", "2"), Package("a", "1")});
  EXPECT_THAT(comparison.differences, IsEmpty());
}

TEST(Comparison, TellsWhatCameAndWhatWent) {
  const Comparison comparison = Compare({Package("a", "1"), Package("b", "2")}, {Package("b", "2"), Package("c", "3")});
  EXPECT_THAT(Told(comparison),
              ElementsAre("removed package a: file_version 1 -> ", "added package c: file_version  -> 3"));
  EXPECT_EQ(comparison.same, 1u);
}

TEST(Comparison, OrdersVersionsAsTheLibraryDoes) {
  const Records before = {Package("a", "9.1"), Package("b", "10.1"),  Package("c", "1.2"),
                          Package("d", "1.A"), Package("e", "1.2.3"), Package("f", "1.2")};
  const Records after = {Package("a", "10.1"), Package("b", "9.1"), Package("c", "1.02"),
                         Package("d", "1.b"),  Package("e", "1.2"), Package("f", "1.2")};
  EXPECT_THAT(
      Told(Compare(before, after)),
      ElementsAre("upgraded package a: file_version 9.1 -> 10.1", "downgraded package b: file_version 10.1 -> 9.1",
                  "changed package c: file_version 1.2 -> 1.02", "upgraded package d: file_version 1.A -> 1.b",
                  "downgraded package e: file_version 1.2.3 -> 1.2"));
}

TEST(Comparison, TakesAVersionThatIsNotKnownForNoUpgrade) {
  const Records before = {Package("a", "N/A"), Package("b", "1"), Package("c", "")};
  const Records after = {Package("a", "1"), Package("b", "N/A"), Package("c", "1")};
  EXPECT_THAT(Told(Compare(before, after)),
              ElementsAre("changed package a: file_version N/A -> 1", "changed package b: file_version 1 -> N/A",
                          "changed package c: file_version  -> 1"));
}

TEST(Comparison, TellsEveryFieldThatCounts) {
  InventoryRecord before = Record(FoundBy::Service, "a.sys", "1", "C:\\a.sys", "Running");
  InventoryRecord after = Record(FoundBy::Service, "a.sys", "2", "D:\\a.sys", "Stopped");
  before.driver.start_type = "Manual";
  after.driver.start_type = "Disabled";
  before.driver.provider = "p";
  after.driver.provider = "q";
  before.driver.size = "5";
  after.driver.size = "6";
  // These do not count.
  after.driver.description = "d";
  after.driver.date = "01/01/2024 ";
  after.driver.product_version = "9";
  after.driver.reserved1 = "r";
  EXPECT_THAT(Told(Compare({before}, {after})),
              ElementsAre("upgraded service a.sys: provider p -> q; path C:\\a.sys -> D:\\a.sys; file_version 1 -> 2; "
                          "state Running -> Stopped; start_type Manual -> Disabled; size 5 -> 6"));
  after.driver = before.driver;
  after.driver.date = "01/01/2024 ";
  EXPECT_THAT(Compare({before}, {after}).differences, IsEmpty());
  after.driver.state = "Stopped";
  EXPECT_THAT(Told(Compare({before}, {after})), ElementsAre("changed service a.sys: state Running -> Stopped"));
}

TEST(Comparison, KeepsTheListingsApart) {
  EXPECT_THAT(Told(Compare({Record(FoundBy::Device, "a", "1")}, {Record(FoundBy::Service, "a", "1")})),
              ElementsAre("removed device a: file_version 1 -> ", "added service a: file_version  -> 1"));
}

TEST(Comparison, PairsServicesOfOneNameByWhatIsEqualThenByPath) {
  const Records before = {Record(FoundBy::Service, "a", "1", "C:\\1"), Record(FoundBy::Service, "a", "2", "C:\\2"),
                          Record(FoundBy::Service, "a", "3", "C:\\3")};
  const Records after = {Record(FoundBy::Service, "a", "4", "C:\\2"), Record(FoundBy::Service, "a", "3", "C:\\3")};
  const Comparison comparison = Compare(before, after);
  EXPECT_THAT(Told(comparison),
              ElementsAre("upgraded service a: file_version 2 -> 4", "removed service a: file_version 1 -> "));
  EXPECT_EQ(comparison.same, 1u);
}

TEST(Comparison, PairsTheRestFromTheNewestOn) {
  EXPECT_THAT(Told(Compare({Package("a", "1"), Package("a", "2")}, {Package("a", "3")})),
              ElementsAre("upgraded package a: file_version 2 -> 3", "removed package a: file_version 1 -> "));
  EXPECT_THAT(Told(Compare({Package("a", "3")}, {Package("a", "1"), Package("a", "2")})),
              ElementsAre("downgraded package a: file_version 3 -> 2", "added package a: file_version  -> 1"));
  EXPECT_EQ(Compare({Package("a", "1"), Package("a", "1")}, {Package("a", "1"), Package("a", "1")}).same, 2u);
  EXPECT_THAT(Told(Compare({Package("a", "1"), Package("a", "1")}, {Package("a", "1")})),
              ElementsAre("removed package a: file_version 1 -> "));
}

const Inventory Before = {"host", "10.0.1", "0.1.0", "2024-05-06T07:08:09Z", {}};
const Inventory After = {"h\u00F6st", "10.0.2", "0.2.0", "2024-05-07T07:08:09Z", {}};

Comparison TwoDifferences() {
  Comparison comparison;
  comparison.differences = {
      {DifferenceKind::Upgraded, FoundBy::Service, "a.sys", {{"file_version", "1", "2"}, {"size", "5", "6"}}},
      {DifferenceKind::Removed, FoundBy::Package, "\u0436.inf", {{"file_version", "3", ""}}}};
  comparison.same = 7;
  return comparison;
}

TEST(DiffTable, HasARowPerFieldThatDiffers) {
  EXPECT_EQ(FormatDiffTable(Before, After, TwoDifferences(), {0, false}),
            "old: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "new: h\u00F6st, Windows 10.0.2, 2024-05-07T07:08:09Z\n"
            "difference  found_by  name   field         old  new\n"
            "upgraded    service   a.sys  file_version  1    2\n"
            "upgraded    service   a.sys  size          5    6\n"
            "removed     package   \u0436.inf  file_version  3\n"
            "1 removed, 1 upgraded, 7 the same\n");
}

TEST(DiffTable, OfTheSameSaysSo) {
  Comparison same;
  same.same = 3;
  EXPECT_EQ(FormatDiffTable(Before, Before, same, {0, true}),
            "old: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "new: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "3 the same\n");
}

TEST(DiffTable, IsReadableOnATerminalOf80Columns) {
  Comparison comparison;
  comparison.differences = {{DifferenceKind::Changed,
                             FoundBy::Service,
                             "smpgpio2.sys",
                             {{"path", "C:\\windows\\system32\\DriverStore\\FileRepository\\smpgpio2.inf\\smpgpio2.sys",
                               "C:\\windows\\system32\\drivers\\smpgpio2.sys"}}}};
  EXPECT_EQ(FormatDiffTable(Before, Before, comparison, {79, false}),
            "old: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "new: host, Windows 10.0.1, 2024-05-06T07:08:09Z\n"
            "difference  found_by  name          field  old                new\n"
            "changed     service   smpgpio2.sys  path   \u2026inf\\smpgpio2.sys  \u2026ers\\smpgpio2.sys\n"
            "1 changed, 0 the same\n");
}

TEST(DiffJson, TellsBothSidesAndEveryDifference) {
  EXPECT_EQ(FormatDiffJson(Before, After, TwoDifferences()), R"({
  "schema_version": 1,
  "old": {
    "host": "host",
    "windows": "10.0.1",
    "tool_version": "0.1.0",
    "time": "2024-05-06T07:08:09Z"
  },
  "new": {
    "host": "höst",
    "windows": "10.0.2",
    "tool_version": "0.2.0",
    "time": "2024-05-07T07:08:09Z"
  },
  "summary": {
    "added": 0,
    "removed": 1,
    "upgraded": 1,
    "downgraded": 0,
    "changed": 0,
    "same": 7
  },
  "differences": [
    {
      "difference": "upgraded",
      "found_by": "service",
      "name": "a.sys",
      "changes": [
        {
          "field": "file_version",
          "old": "1",
          "new": "2"
        },
        {
          "field": "size",
          "old": "5",
          "new": "6"
        }
      ]
    },
    {
      "difference": "removed",
      "found_by": "package",
      "name": "ж.inf",
      "changes": [
        {
          "field": "file_version",
          "old": "3",
          "new": ""
        }
      ]
    }
  ]
}
)");
}

}  // namespace
