#include "snapshotfile.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "records.h"

using namespace driverlist;
using Json = nlohmann::ordered_json;
using Orvane::DriverData;
using testing::HasSubstr;

namespace {

DriverData FullDriver() {
  DriverData driver;
  driver.name = "Ger\u00E4t.sys";
  driver.description = "two\nlines \"so\"";
  driver.provider = "p";
  driver.path = "C:\\x\\\u0436.sys";
  driver.file_version = "1.2";
  driver.state = "Running";
  driver.start_type = "Manual";
  driver.date = "06/21/2006 13:05:09";
  driver.size = "42";
  driver.product_version = "1.3";
  driver.reserved1 = "r1";
  driver.reserved2 = "r2";
  driver.reserved_list = {"a", ""};
  driver.found_by_device = 1;
  return driver;
}

Inventory ThreeRecords() {
  return {"h\u00F6st",
          "10.0.22621",
          "0.1.0",
          "2024-05-06T07:08:09Z",
          {{FoundBy::Device, FullDriver()}, {FoundBy::Service, DriverData()}, {FoundBy::Package, FullDriver()}}};
}

Json Snapshot() { return Json::parse(SnapshotText(ThreeRecords())); }

std::string ProblemOf(const Json& json) { return ParseSnapshot(json.dump()).problem; }

TEST(Snapshot, IsReadAsItWasWritten) {
  const ParsedSnapshot parsed = ParseSnapshot(SnapshotText(ThreeRecords()));
  EXPECT_EQ(parsed.problem, "");
  ASSERT_TRUE(parsed.inventory);
  EXPECT_EQ(parsed.inventory->host, "h\u00F6st");
  EXPECT_EQ(parsed.inventory->windows, "10.0.22621");
  EXPECT_EQ(parsed.inventory->tool, "0.1.0");
  EXPECT_EQ(parsed.inventory->time, "2024-05-06T07:08:09Z");
  ASSERT_EQ(parsed.inventory->records.size(), 3u);
  const auto& records = parsed.inventory->records;
  EXPECT_EQ(records[0].foundBy, FoundBy::Device);
  EXPECT_EQ(records[1].foundBy, FoundBy::Service);
  EXPECT_EQ(records[2].foundBy, FoundBy::Package);
  EXPECT_EQ(test::Described(records[0].driver), test::Described(FullDriver()));
  EXPECT_EQ(test::Described(records[1].driver), test::Described(DriverData()));
}

TEST(Snapshot, TellsWhatItIs) {
  const Json json = Snapshot();
  EXPECT_EQ(json.at("kind"), "driverlist snapshot");
  EXPECT_EQ(json.at("schema_version"), 1);
  EXPECT_EQ(json.at("host"), "h\u00F6st");
  EXPECT_EQ(json.at("windows"), "10.0.22621");
  EXPECT_EQ(json.at("tool_version"), "0.1.0");
  EXPECT_EQ(json.at("time"), "2024-05-06T07:08:09Z");
  EXPECT_EQ(json.at("drivers").at(0).at("found_by"), "device");
  EXPECT_EQ(json.at("drivers").at(0).at("name"), "Ger\u00E4t.sys");
}

TEST(Snapshot, MayHaveMembersThatAreNotKnown) {
  Json json = Snapshot();
  json["colour"] = {{"a", 1}};
  json["drivers"][0]["colour"] = 5;
  EXPECT_EQ(ProblemOf(json), "");
}

TEST(Snapshot, ThatWasCutShortIsDamaged) {
  const std::string text = SnapshotText(ThreeRecords());
  for (std::size_t size = 40; size + 3 < text.size(); size += 7) {
    EXPECT_EQ(ParseSnapshot(text.substr(0, size)).problem, "is damaged: it is no whole JSON document") << size;
  }
}

TEST(Snapshot, IsNothingElse) {
  const std::string foreign = "is no snapshot of driverlist";
  for (const char* const text :
       {"", " ", "MZ\x90", "name,version\r\n", "[]", "{}", "null", "5", "\"driverlist snapshot\"", "{\"kind\":5}",
        "{\"kind\":\"driverlist snapshot\"}", R"({"schema_version":1,"host":"h","mode":"all","drivers":[]})",
        "{\"a\":{\"kind\":\"driverlist snapshot\"}}"}) {
    EXPECT_EQ(ParseSnapshot(text).problem, foreign) << text;
    EXPECT_FALSE(ParseSnapshot(text).inventory);
  }
  EXPECT_EQ(ParseSnapshot(std::string(100'000, '[')).problem, foreign);
}

TEST(Snapshot, OfANewerSchemaIsNotRead) {
  Json json = Snapshot();
  json["schema_version"] = 2;
  json["drivers"] = "somewhere else";
  EXPECT_EQ(ProblemOf(json), "was written by a newer driverlist: its schema version is 2, and this one reads 1");
  json["schema_version"] = 18446744073709551615u;
  EXPECT_THAT(ProblemOf(json), HasSubstr("18446744073709551615"));
}

TEST(Snapshot, WithoutAMemberIsDamaged) {
  for (const char* const member : {"host", "windows", "tool_version", "time", "drivers"}) {
    Json json = Snapshot();
    json.erase(member);
    EXPECT_EQ(ProblemOf(json), std::string("is damaged: it has no ") + member);
    json[member] = 5;
    EXPECT_EQ(ProblemOf(json), std::string("is damaged: it has no ") + member);
  }
  for (const char* const version : {"0", "-1", "1.5", "\"1\"", "null"}) {
    Json json = Snapshot();
    json["schema_version"] = Json::parse(version);
    EXPECT_EQ(ProblemOf(json), "is damaged: it has no schema_version") << version;
  }
}

TEST(Snapshot, WithADamagedDriverIsDamaged) {
  for (const char* const member : {"found_by", "name", "file_version", "size", "reserved_list", "found_by_device"}) {
    Json json = Snapshot();
    json["drivers"][1].erase(member);
    EXPECT_EQ(ProblemOf(json), std::string("is damaged: driver 2 has no ") + member);
    json["drivers"][1][member] = Json::object();
    EXPECT_EQ(ProblemOf(json), std::string("is damaged: driver 2 has no ") + member);
  }
  Json json = Snapshot();
  json["drivers"][2]["found_by"] = "luck";
  EXPECT_EQ(ProblemOf(json), "is damaged: driver 3 has no found_by");
  json["drivers"][0] = "driver";
  EXPECT_EQ(ProblemOf(json), "is damaged: driver 1 is no record");
}

}  // namespace
