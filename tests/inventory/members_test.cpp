#include "inventory/members.h"

#include <gmock/gmock.h>

#include <set>

#include "inventory/json.h"
#include "inventory/problems.h"

using namespace inventory;
using testing::ElementsAre;

namespace {

Record Whole() {
  Record record;
  record.kind = Kind::Device;
  record.name = "net_1";
  record.version = "1.10";
  record.size = 0;
  record.image_missing = true;
  record.files = {"a.sys", "b.dll"};
  record.problem_code = 28;
  return record;
}

std::string Text(const Record& record, const char* member) { return TextOf(ValueOf(record, *FindMember(member))); }

TEST(Members, HaveNamesOfTheirOwn) {
  std::set<std::string_view> names;
  std::set<std::string_view> labels;
  for (const Member& member : Members()) {
    EXPECT_TRUE(names.insert(member.name).second) << member.name;
    EXPECT_TRUE(labels.insert(member.label).second) << member.label;
    EXPECT_EQ(FindMember(member.name), &member);
  }
  EXPECT_EQ(FindMember("file_version"), nullptr);
}

TEST(Members, HavePlacesThatCountFromOne) {
  std::set<unsigned> table;
  std::set<unsigned> page;
  for (const Member& member : Members()) {
    EXPECT_TRUE(member.tablePlace == 0 || table.insert(member.tablePlace).second) << member.name;
    EXPECT_TRUE(member.pagePlace == 0 || page.insert(member.pagePlace).second) << member.name;
  }
  EXPECT_EQ(*table.rbegin(), table.size());
  EXPECT_EQ(*page.rbegin(), page.size());
}

TEST(Members, AreTextsForCells) {
  const Record record = Whole();
  EXPECT_EQ(Text(record, "kind"), "device");
  EXPECT_EQ(Text(record, "name"), "net_1");
  EXPECT_EQ(Text(record, "size"), "0");
  EXPECT_EQ(Text(record, "image_missing"), "true");
  EXPECT_EQ(Text(record, "files"), "a.sys;b.dll");
  EXPECT_EQ(Text(record, "provider"), "");
  EXPECT_EQ(Text(record, "names"), "");
}

TEST(Members, AreMadeOfOthersWhereTheyAreNotKept) {
  Record record = Whole();
  EXPECT_EQ(Text(record, "version_key"), "b1c10");
  EXPECT_EQ(Text(record, "problem"), "CM_PROB_FAILED_INSTALL");
  record.version.clear();
  record.problem_code.reset();
  EXPECT_EQ(Text(record, "version_key"), "");
  EXPECT_EQ(Text(record, "problem"), "");
}

TEST(Members, AreLeftOutOfJsonWhereTheyAreUnknown) {
  Json object = Json::object();
  AddMembers(object, Whole());
  EXPECT_EQ(JsonText(object, false),
            "{\"kind\":\"device\",\"name\":\"net_1\",\"version\":\"1.10\",\"version_key\":\"b1c10\","
            "\"image_missing\":true,\"size\":0,\"files\":[\"a.sys\",\"b.dll\"],\"problem_code\":28,"
            "\"problem\":\"CM_PROB_FAILED_INSTALL\"}");
}

TEST(Problems, HaveTheNamesOfThePlatform) {
  EXPECT_EQ(ProblemName(1), "CM_PROB_NOT_CONFIGURED");
  EXPECT_EQ(ProblemName(22), "CM_PROB_DISABLED");
  EXPECT_EQ(ProblemName(28), "CM_PROB_FAILED_INSTALL");
  EXPECT_EQ(ProblemName(43), "CM_PROB_FAILED_POST_START");
  EXPECT_EQ(ProblemName(52), "CM_PROB_UNSIGNED_DRIVER");
  EXPECT_EQ(ProblemName(57), "CM_PROB_GUEST_ASSIGNMENT_FAILED");
  EXPECT_EQ(ProblemName(0), "");
  EXPECT_EQ(ProblemName(58), "");
  EXPECT_EQ(ProblemName(~std::uint64_t{0}), "");
}

TEST(Records, HaveKeysThatDoNotKnowCase) {
  Record record;
  record.service = "Disk\u00C4";
  EXPECT_EQ(KeyOf(record), "disk\u00E4");
  record.kind = Kind::Device;
  record.instance_id = "PCI\\VEN_8086";
  EXPECT_EQ(KeyOf(record), "pci\\ven_8086");
  record.kind = Kind::Package;
  record.inf = "OEM1.INF";
  EXPECT_EQ(KeyOf(record), "oem1.inf");
  record.kind = Kind::Chipset;
  record.name = "intel_chipset";
  EXPECT_EQ(KeyOf(record), "intel_chipset");
}

}  // namespace
