// Every table of the program, of the sample machines, on pages of any width.
#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>
#include <sstream>

#include "commands/columns.h"
#include "commands/helpmembers.h"
#include "formats/checkformats.h"
#include "formats/diffformats.h"
#include "formats/formats.h"
#include "formats/healthformats.h"
#include "inventory/healthrules.h"
#include "inventory/input.h"
#include "inventory/listing.h"
#include "inventory/memberdescriptions.h"
#include "inventory/snapshot.h"
#include "terminal/text.h"

using namespace driverlist;
using inventory::Record;
using inventory::Records;
using testing::HasSubstr;

namespace {

constexpr std::size_t Narrowest = 20;
constexpr std::size_t Widest = 250;

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string WithoutCodes(const std::string& text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\x1B')
      at = text.find('m', at);
    else
      plain += text[at];
  }
  return plain;
}

/// Its lines in one, with a blank on both sides.
std::string InOneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return " " + text + " ";
}

/// Without what a line break puts between the parts of a text.
std::string Squeezed(std::string text) {
  text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\n'; }), text.end());
  return text;
}

std::size_t CountOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// A line that ends within a colour would colour the next one.
void ExpectWholeCodes(const std::string& coloured) {
  for (const std::string& line : Lines(coloured)) {
    ASSERT_EQ(CountOf("\x1B", line), 2 * CountOf("\x1B[0m", line)) << line;
  }
}

/// Calls `check` with what `format` makes of a page of each width, after a look at its lines.
template <typename Format, typename Check>
void ForEachWidth(Format format, Check check) {
  for (std::size_t width = Narrowest; width <= Widest; ++width) {
    SCOPED_TRACE(width);
    const std::string text = format(Page{width, false});
    for (const std::string& line : Lines(text)) ASSERT_LE(Columns(line), width) << line;
    const std::string coloured = format(Page{width, true});
    ASSERT_EQ(WithoutCodes(coloured), text);
    ExpectWholeCodes(coloured);
    check(text, width);
    if (testing::Test::HasFailure()) return;
  }
}

inventory::Inventory Machine(const std::string& name) {
  inventory::InputFile file("..\\samplemachine\\expected\\" + name + ".snapshot.json");
  return inventory::ReadSnapshot(file);
}

const std::vector<std::string> Machines = {"world", "intel-laptop", "amd-server"};

/// Some of them signed, and one on a list.
Records Verified(Records records) {
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (!records[i].service.empty()) records[i].signature = i % 3 == 0 ? "unsigned" : "valid";
    if (records[i].signature == "valid") records[i].signer = "Zertifikatsstelle f\u00FCr Ger\u00E4te, Abteilung 7";
  }
  records.front().known.emplace_back();
  records.front().known.back().list = "LOLDrivers";
  records.front().known.back().entry = "0f0e6c9a-6f0e-4a7c-b0fa-000000000000";
  return records;
}

/// With the columns of those names; with those of a table when there is no name.
std::string FormattedTable(const Table& table, const std::vector<std::string>& names, bool isVerified,
                           const Page& page) {
  std::vector<inventory::Column> columns = DefaultColumns(table.columns, Format::Table, isVerified);
  if (!names.empty()) {
    columns.clear();
    for (const std::string& name : names) {
      columns.push_back(table.columns[IndexOf(table.columns, name)]);
      columns.back().leavesAs = 0;
    }
  }
  std::vector<std::size_t> rows(table.rows.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  return FormatTable(PartOf(table, rows, columns), page);
}

/// As often as records have it.
void ExpectVersionsWhole(const Table& table, std::string_view versionColumn, const std::string& text) {
  std::vector<std::string> versions;
  const std::size_t place = IndexOf(table.columns, versionColumn);
  for (const auto& row : table.rows) {
    const std::string version = inventory::TextOf(row[place].value);
    if (!version.empty()) versions.push_back(version);
  }
  ASSERT_FALSE(versions.empty());
  const std::string words = InOneLine(text);
  for (const std::string& version : versions) {
    const auto wanted = std::count(versions.begin(), versions.end(), version);
    ASSERT_GE(CountOf(" " + version + " ", words), static_cast<std::size_t>(wanted)) << version << "\n" << text;
  }
}

/// A line of a table for each row, or a paragraph.
void ExpectEveryRow(const Table& table, const std::string& text) {
  const std::size_t end = text.find("\n\nThere is no room for ");
  const std::string rows = text.substr(0, end == std::string::npos ? text.size() - 1 : end);
  const bool isTable = rows.find("\n\n") == std::string::npos;
  const std::size_t wanted = table.rows.size();
  ASSERT_EQ(isTable ? CountOf("\n", rows) : CountOf("\n\n", rows) + 1, wanted) << text;
}

TEST(AnyWidth, HasRoomForTheInventory) {
  for (const std::string& machine : Machines) {
    SCOPED_TRACE(machine);
    const Table table = TableOf(Machine(machine).records);
    ForEachWidth([&](const Page& page) { return FormattedTable(table, {}, false, page); },
                 [&](const std::string& text, std::size_t /*width*/) {
                   ExpectEveryRow(table, text);
                   ExpectVersionsWhole(table, "version", text);
                 });
  }
}

TEST(AnyWidth, HasRoomForAVerifiedInventory) {
  const Table table = TableOf(Verified(Machine("world").records));
  ForEachWidth([&](const Page& page) { return FormattedTable(table, {}, true, page); },
               [&](const std::string& text, std::size_t /*width*/) {
                 ExpectEveryRow(table, text);
                 ExpectVersionsWhole(table, "version", text);
                 ASSERT_EQ(CountOf("unsigned", text), 5u) << text;
               });
}

TEST(AnyWidth, HasRoomForChosenMembers) {
  const Table table = TableOf(Machine("world").records);
  const std::vector<std::string> names = {
      "kind",        "name", "description", "provider", "version", "product_version",
      "version_key", "path", "image_time",  "size",     "inf_date"};
  ForEachWidth([&](const Page& page) { return FormattedTable(table, names, false, page); },
               [&](const std::string& text, std::size_t /*width*/) {
                 ExpectEveryRow(table, text);
                 ExpectVersionsWhole(table, "version", text);
                 ExpectVersionsWhole(table, "product_version", text);
                 ASSERT_EQ(text.find("There is no room for"), std::string::npos);
               });
}

TEST(AnyWidth, HasRoomForEveryMember) {
  const Table table = TableOf(Verified(Machine("world").records));
  std::vector<std::string> names;
  for (const inventory::Column& column : table.columns) names.emplace_back(column.name);
  ForEachWidth([&](const Page& page) { return FormattedTable(table, names, true, page); },
               [&](const std::string& text, std::size_t /*width*/) {
                 ExpectEveryRow(table, text);
                 ExpectVersionsWhole(table, "version", text);
               });
}

TEST(AnyWidth, HasRoomForAListingOfTheLibrary) {
  std::vector<inventory::ListedDriver> drivers(2);
  drivers[0].name = "nlnet_8086-15FB-1028-0A5C";
  drivers[0].file_version = "65535.65535.65535.65535";
  drivers[0].state = "Continue Pending";
  drivers[0].start_type = "System Start";
  drivers[0].provider = "\u97FF\u97F3\u5DE5\u623F";
  drivers[0].path = "C:\\windows\\system32\\DriverStore\\FileRepository\\nlnet.inf_amd64\\nlnet.sys";
  drivers[1].name = "a.sys";
  drivers[1].file_version = "N/A";
  const Table table = TableOf(drivers);
  ForEachWidth([&](const Page& page) { return FormattedTable(table, {}, false, page); },
               [&](const std::string& text, std::size_t /*width*/) {
                 ExpectEveryRow(table, text);
                 // Where there are but 18 columns below a title, no version of 23 is in one line.
                 if (CountOf("\n", text) < 10) ExpectVersionsWhole(table, "file_version", text);
                 ASSERT_THAT(Squeezed(text), HasSubstr("65535.65535.65535.65535"));
               });
}

TEST(AnyWidth, HasRoomForCounts) {
  const Table table = TableOf(Machine("world").records);
  std::vector<inventory::Column> by = {table.columns[IndexOf(table.columns, "provider")],
                                       table.columns[IndexOf(table.columns, "version")]};
  for (inventory::Column& column : by) column.leavesAs = 0;
  std::vector<std::size_t> rows(table.rows.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  const Table groups = Grouped(table, rows, by);
  ForEachWidth([&](const Page& page) { return FormatTable(groups, page); },
               [&](const std::string& text, std::size_t /*width*/) {
                 ExpectEveryRow(groups, text);
                 ExpectVersionsWhole(groups, "version", text);
               });
}

TEST(AnyWidth, ShowsAVersionOfAnyLengthWhole) {
  for (const std::size_t length : {1u, 15u, 16u, 23u, 35u, 50u}) {
    SCOPED_TRACE(length);
    Records records = Machine("intel-laptop").records;
    const std::string version = std::string(length - 1, '7') + ".";
    records[3].version = version;
    const Table table = TableOf(records);
    ForEachWidth([&](const Page& page) { return FormattedTable(table, {}, false, page); },
                 [&](const std::string& text, std::size_t /*width*/) {
                   ExpectEveryRow(table, text);
                   ASSERT_THAT(Squeezed(text), HasSubstr(version));
                 });
  }
}

// --- What is not a list of drivers.

/// `machine` some time later: everything has another version, a path, a state and a problem, one record came and
/// another one is gone.
inventory::Comparison Later(const std::string& machine) {
  inventory::Inventory after = Machine(machine);
  for (Record& record : after.records) {
    if (!record.version.empty()) record.version += "9";
    if (!record.path.empty()) record.path = "C:\\windows\\System32\\DriverStore\\FileRepository\\" + record.name;
    if (!record.state.empty()) record.state = record.state == "Running" ? "Stopped" : "Running";
    if (!record.instance_id.empty()) record.problem_code = 43;
  }
  after.records.push_back(after.records.front());
  after.records.back().service = after.records.back().name = "\u65B0\u3057\u3044 new driver.sys";
  after.records.erase(after.records.begin() + 1);
  return inventory::Compare(Machine(machine), std::move(after));
}

TEST(AnyWidth, HasRoomForBothVersionsOfADifference) {
  for (const std::string& machine : Machines) {
    SCOPED_TRACE(machine);
    const inventory::Comparison comparison = Later(machine);
    ASSERT_GT(comparison.differences.size(), 10u);
    ForEachWidth([&](const Page& page) { return FormatDiffTable(comparison, page); },
                 [&](const std::string& text, std::size_t width) {
                   const std::string words = InOneLine(text);
                   const std::string squeezed = Squeezed(text);
                   for (const inventory::Difference& difference : comparison.differences) {
                     for (const inventory::Record* const record : {difference.before, difference.after}) {
                       if (record == nullptr || record->version.empty()) continue;
                       // A narrower page has no line for two indents, an arrow and a version.
                       const bool hasLines = width >= 26;
                       ASSERT_THAT(hasLines ? words : squeezed,
                                   HasSubstr(hasLines ? " " + record->version + " " : record->version))
                           << text;
                     }
                   }
                   for (const inventory::DifferenceKind kind : inventory::DifferenceKinds) {
                     const std::size_t count = comparison.GroupsOf(kind);
                     if (count == 0) continue;
                     ASSERT_THAT(words, HasSubstr(" " + std::to_string(count) + " "));
                   }
                 });
  }
}

TEST(AnyWidth, HasRoomForFindings) {
  for (const std::string& machine : Machines) {
    SCOPED_TRACE(machine);
    inventory::Inventory inventory = Machine(machine);
    inventory.records = Verified(std::move(inventory.records));
    inventory.isVerified = true;
    const auto findings = inventory::Examine(inventory.records);
    ASSERT_GT(findings.size(), 5u);
    ForEachWidth([&](const Page& page) { return FormatHealthTable(findings, inventory, page); },
                 [&](const std::string& text, std::size_t /*width*/) {
                   const std::string words = Squeezed(text);
                   for (const inventory::Finding& finding : findings) {
                     ASSERT_THAT(words, HasSubstr(Squeezed(Visible(finding.subject + finding.evidence)))) << text;
                     ASSERT_THAT(words, HasSubstr(Squeezed(Visible(finding.nextStep)))) << text;
                   }
                   for (const inventory::HealthRule& rule : inventory::HealthRules()) {
                     const bool isThere = words.find(Squeezed(std::string(rule.meaning))) != std::string::npos;
                     ASSERT_EQ(isThere, std::any_of(findings.begin(), findings.end(),
                                                    [&](const auto& finding) { return finding.rule == rule.name; }));
                   }
                 });
  }
}

TEST(AnyWidth, HasRoomForAPolicy) {
  const inventory::Policy policy = {
      "servers",
      "",
      {{"signed", inventory::Severity::High, "Drivers must be signed, wherever they come from", {}},
       {"kept", inventory::Severity::Medium, "", {}},
       {"a-rule-that-is-about-no-driver", inventory::Severity::Low, "", {}}}};
  inventory::PolicyCheck check;
  check.head = {"", "h\u00F6st", "", "10.0.22621", "2024-05-06T07:08:09Z"};
  check.results = {
      {inventory::RuleState::Broken,
       5,
       12345,
       {{"\u97FF\u97F3\u5DE5\u623F", "version is 10.0.22621.1635, where version>=10.0.26100 is expected", "service"}}},
      {inventory::RuleState::Kept, 1, 0, {}},
      {inventory::RuleState::NotApplicable, 0, 0, {}}};
  ForEachWidth(
      [&](const Page& page) {
        return FormatPolicyCheck(policy, {check, check}, page);
      },
      [&](const std::string& text, std::size_t /*width*/) {
        const std::string words = Squeezed(text);
        for (const auto& [part, count] :
             {std::pair("\u97FF\u97F3\u5DE5\u623F", 2u), std::pair("10.0.22621.1635", 2u),
              std::pair("Driversmustbesigned,wherevertheycomefrom", 2u), std::pair("12344more", 2u),
              std::pair("a-rule-that-is-about-no-driver", 2u), std::pair("1of3rulesfailed", 2u),
              std::pair("h\u00F6st,Windows10.0.22621,2024-05-06T07:08:09Z", 2u)}) {
          ASSERT_EQ(CountOf(part, words), count) << part << "\n" << text;
        }
      });
}

TEST(AnyWidth, HasRoomForTheMembers) {
  ForEachWidth([](const Page& page) { return MembersHelp(page.width); },
               [](const std::string& text, std::size_t /*width*/) {
                 const std::string words = Squeezed(text);
                 for (const inventory::MemberDescription& member : inventory::MemberDescriptions()) {
                   ASSERT_THAT(words, HasSubstr(member.name));
                   ASSERT_THAT(words, HasSubstr(Squeezed(std::string(member.meaning))));
                 }
               });
}

}  // namespace
