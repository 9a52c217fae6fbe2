#include "inventory/snapshot.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "hostile.h"
#include "inventories.h"
#include "inventory/comparison.h"
#include "inventory/input.h"

using namespace inventory;
using test::Described;
using test::ReadSnapshotText;

namespace {

/// Puts something into each member that is not made of others.
struct Fill {
  Record& record;
  std::string text;

  void operator()(std::string Record::*member) const { record.*member = text; }
  void operator()(std::optional<std::uint64_t> Record::*member) const { record.*member = ~std::uint64_t{0}; }
  void operator()(bool Record::*member) const { record.*member = true; }
  void operator()(std::vector<std::string> Record::*member) const { record.*member = {text, "", "\n\"so\" \u202E"}; }
  void operator()(std::string (*)(const Record&)) const {}
};

Record FullRecord(Kind kind) {
  Record record;
  record.kind = kind;
  for (const Member& member : Members()) {
    std::visit(Fill{record, "Ger\u00E4t \u0436 \U0001F600 " + std::string(member.name)}, member.source);
  }
  return record;
}

Inventory FourRecords() {
  Inventory inventory;
  inventory.head = {"0.1.0", "h\u00F6st", "4f1e-id", "10.0.22621", "2024-05-06T07:08:09Z"};
  for (const Kind kind : {Kind::Chipset, Kind::Package, Kind::Device, Kind::Service}) {
    inventory.records.push_back(FullRecord(kind));
  }
  return inventory;
}

/// Keeps the order of members.
Json Snapshot() { return Json::parse(SnapshotText(FourRecords())); }

std::string ProblemOf(const std::string& text) {
  try {
    ReadSnapshotText(text);
  } catch (const InputProblem& problem) {
    return problem.what();
  }
  return "";
}

std::string ProblemOf(const Json& json) { return ProblemOf(json.dump()); }

TEST(Snapshot, IsReadAsItWasWritten) {
  EXPECT_EQ(Described(ReadSnapshotText(SnapshotText(FourRecords()))), Described(FourRecords()));
  Inventory empty;
  EXPECT_EQ(Described(ReadSnapshotText(SnapshotText(empty))), Described(empty));
  empty.records.resize(2);
  EXPECT_EQ(Described(ReadSnapshotText(SnapshotText(empty))), Described(empty));
}

TEST(Snapshot, HoldsAllMembersAsDocumentsDo) {
  Inventory inventory;
  inventory.head = {"0.1.0", "h\u00F6st", "id", "10.0.22621", "2024-05-06T07:08:09Z"};
  inventory.records = {test::ServiceRecord("a", "1.2", "C:\\\u0436.sys"), test::DeviceRecord("PCI\\1", "")};
  inventory.records[0].size = 0;
  inventory.records[0].image_missing = true;
  inventory.records[1].problem_code = 28;
  inventory.records[1].names = {"n1", "n2"};
  EXPECT_EQ(SnapshotText(inventory), R"({
  "kind": "driverlist snapshot",
  "schema_version": 2,
  "tool_version": "0.1.0",
  "host": "höst",
  "host_id": "id",
  "windows": "10.0.22621",
  "time": "2024-05-06T07:08:09Z",
  "drivers": [
    {
      "kind": "service",
      "name": "a.sys",
      "version": "1.2",
      "version_key": "b1b2",
      "service": "a",
      "path": "C:\\ж.sys",
      "image_missing": true,
      "size": 0
    },
    {
      "kind": "device",
      "name": "PCI\\1_name",
      "instance_id": "PCI\\1",
      "names": [
        "n1",
        "n2"
      ],
      "problem_code": 28,
      "problem": "CM_PROB_FAILED_INSTALL"
    }
  ]
}
)");
}

TEST(Snapshot, HoldsWhatWasVerified) {
  Record service = test::ServiceRecord("net", "1");
  service.sha256 = std::string(64, 'a');
  service.image_sha256 = std::string(64, 'b');
  service.signature = "invalid";
  service.signature_problem = "Broken. (0x80096010)";
  service.signature_kind = "catalog";
  service.catalog = "oem1.cat";
  service.signer = "Ger\u00E4te";
  service.signer_thumbprint = std::string(40, 'c');
  service.signed_at = "2024-05-06T07:08:09Z";
  service.known = {
      {"List", "1", "evil.sys", trust::Category::Malicious, trust::MatchKind::ImageHash, {"CVE-1", "CVE-2"}},
      {"List", "2", "", trust::Category::Vulnerable, trust::MatchKind::NameAndVersion, {}}};
  Inventory inventory;
  inventory.records = {service, test::ServiceRecord("other", "2")};
  const std::string text = SnapshotText(inventory);
  EXPECT_EQ(SnapshotText(test::ReadSnapshotText(text)), text);
  EXPECT_THAT(text, testing::HasSubstr(R"("known": [
        {
          "list": "List",
          "entry": "1",
          "name": "evil.sys",
          "category": "malicious",
          "match": "image-hash",
          "cve": [
            "CVE-1",
            "CVE-2"
          ]
        },
        {
          "list": "List",
          "entry": "2",
          "category": "vulnerable",
          "match": "name-and-version"
        }
      ])"));
}

TEST(Snapshot, IsDamagedWhereItsMatchesAreNone) {
  const auto problem = [](const std::string& known) {
    try {
      test::ReadSnapshotText(R"({"kind": "driverlist snapshot", "schema_version": 2, "drivers": [{"kind": "service",
          "name": "a", "known": )" +
                             known + "}]}");
      return std::string();
    } catch (const InputProblem& refused) {
      return std::string(refused.what());
    }
  };
  EXPECT_EQ(problem("null"), "");
  EXPECT_EQ(problem(R"([{"list": 1, "cve": 2, "new": {"cve": [[{}]]}, "match": "later", "category": null}])"), "");
  EXPECT_EQ(problem("1"), "is damaged: driver 1 (a): known is a whole number, but should be an array of objects");
  EXPECT_EQ(problem("{}"), "is damaged: driver 1 (a): known is an object, but should be an array of objects");
  EXPECT_EQ(problem("[[]]"),
            "is damaged: driver 1 (a): known is an array with an array in it, but should be an array of objects");
  EXPECT_EQ(problem("[\"x\"]"),
            "is damaged: driver 1 (a): known is an array with a text in it, but should be an array of objects");
}

TEST(Snapshot, MayHaveItsMembersInAnyOrder) {
  // This type sorts them: drivers, which come before what says how to read them, host, kind ...
  const std::string sorted = nlohmann::json::parse(SnapshotText(FourRecords())).dump();
  ASSERT_LT(sorted.find("\"drivers\""), sorted.find("\"driverlist snapshot\""));
  EXPECT_EQ(Described(ReadSnapshotText(sorted)), Described(FourRecords()));
  const std::string older = nlohmann::json::parse(test::Schema1Text).dump();
  EXPECT_EQ(Described(ReadSnapshotText(older)), Described(ReadSnapshotText(test::Schema1Text)));
}

TEST(Snapshot, MayHaveMembersThatAreNotKnown) {
  Json json = Snapshot();
  // The document last: a new member moves what is in it.
  for (Json* const object : {&json["drivers"][0], &json["drivers"][3], &json}) {
    (*object)["colour"] =
        Json::parse(R"({"name": 5, "kind": [], "drivers": [{"name": 1, "files": {}}], "c": [[1, [2]]]})");
    (*object)["found_by"] = 5;
    (*object)["version_key"] = "of another program";
    (*object)["tail"] = nullptr;
  }
  EXPECT_EQ(Described(ReadSnapshotText(json.dump())), Described(FourRecords()));
}

TEST(Snapshot, TakesNullForUnknown) {
  Json json = Snapshot();
  json["host"] = nullptr;
  json["drivers"][0]["size"] = nullptr;
  json["drivers"][0]["files"] = nullptr;
  json["drivers"][0]["image_missing"] = false;
  Inventory expected = FourRecords();
  expected.head.host.clear();
  expected.records[0].size.reset();
  expected.records[0].files.clear();
  expected.records[0].image_missing = false;
  EXPECT_EQ(Described(ReadSnapshotText(json.dump())), Described(expected));
}

TEST(Snapshot, TakesTheLastOfAMemberThatIsThereTwice) {
  const std::string head = R"({"kind": "driverlist snapshot", "schema_version": 2, "host": "a", "host": "b", )";
  const std::string drivers =
      R"("drivers": [{"kind": "device", "kind": "service", "service": "a", "files": ["x"], "files": ["y"]}])";
  EXPECT_EQ(Described(ReadSnapshotText(head + drivers + "}")),
            "schema 2 {\"schema_version\":2,\"host\":\"b\"}\n"
            "{\"kind\":\"service\",\"service\":\"a\",\"files\":[\"y\"]}\n");
  EXPECT_EQ(ProblemOf(head + drivers + "," + drivers + "}"), "is damaged: it has the member drivers twice");
}

TEST(Snapshot, KeepsNoRecordThatIsSettled) {
  std::stringbuf text(SnapshotText(FourRecords()), std::ios_base::in);
  std::vector<std::string> asked;
  const Inventory inventory = ReadSnapshot(text, [&asked](const Record& record, unsigned schema) {
    asked.push_back(std::string(KindName(record.kind)) + " of schema " + std::to_string(schema));
    return record.kind == Kind::Package || record.kind == Kind::Service;
  });
  EXPECT_THAT(asked, testing::ElementsAre("chipset of schema 2", "package of schema 2", "device of schema 2",
                                          "service of schema 2"));
  Inventory expected = FourRecords();
  expected.records.erase(expected.records.begin() + 3);
  expected.records.erase(expected.records.begin() + 1);
  EXPECT_EQ(Described(inventory), Described(expected));
  Json json = Snapshot();
  json["drivers"][2].erase("kind");
  json["drivers"][2].erase("name");
  std::stringbuf damaged(json.dump(), std::ios_base::in);
  try {
    ReadSnapshot(damaged, [](const Record&, unsigned) { return true; });
    FAIL() << "was read";
  } catch (const InputProblem& problem) {
    EXPECT_STREQ(problem.what(), "is damaged: driver 3: it has no kind") << "settled records count";
  }
}

TEST(Snapshot, ThatWasCutShortIsDamaged) {
  const std::string text = SnapshotText(FourRecords());
  const std::size_t kindEnd = text.find("snapshot\"") + 9;
  for (std::size_t size = kindEnd; size + 2 < text.size(); ++size) {
    ASSERT_EQ(ProblemOf(text.substr(0, size)), "is damaged: it ends early") << size;
  }
  EXPECT_EQ(ProblemOf(text.substr(0, kindEnd) + "]"), "is damaged: line 2 is not JSON");
}

TEST(Snapshot, IsNothingElse) {
  for (const char* const text :
       {"", " ", "MZ\x90", "name,version\r\n", "[]", "{}", "null", "5", "\"driverlist snapshot\"", "{\"kind\":5}",
        "{\"kind\":\"driverlist snapshot", R"({"schema_version":2,"host":"h","summary":{},"findings":[]})",
        R"({"schema_version":2,"host":"h","kind":"service","name":"a.sys"})",
        "{\"schema_version\":2,\"kind\":\"service\"}\n{\"schema_version\":2,\"kind\":\"device\"}\n",
        "{\"a\":{\"kind\":\"driverlist snapshot\"}}"}) {
    EXPECT_EQ(ProblemOf(std::string(text)), "is not a snapshot of driverlist") << text;
  }
}

TEST(Snapshot, IsNoList) {
  const std::string sentence = "is a list, not a snapshot: write one with \"driverlist snapshot\"";
  EXPECT_EQ(ProblemOf(std::string(R"({"schema_version": 2, "host": "h", "drivers": [{"kind": "service"}]})")),
            sentence);
  EXPECT_EQ(ProblemOf(std::string(R"({"schema_version": 1, "host": "h", "time": "t", "mode": "all", "drivers": []})")),
            sentence);
}

TEST(Snapshot, OfANewerSchemaIsNotRead) {
  Json json = Snapshot();
  json["schema_version"] = 3;
  json["host"] = {1, 2};
  json["drivers"] = "somewhere else";
  EXPECT_EQ(ProblemOf(json),
            "was written by a newer driverlist: its schema version is 3, but this driverlist reads only up to 2");
  json["schema_version"] = 18446744073709551615u;
  EXPECT_EQ(ProblemOf(json),
            "was written by a newer driverlist: its schema version is 18446744073709551615, but this driverlist reads "
            "only up to 2");
}

TEST(Snapshot, WithAHeadOfOtherTypesIsDamaged) {
  const char* const values[] = {"5", "true", "[]", "{\"a\":1}", "-1"};
  const char* const types[] = {"a whole number", "true", "an array", "an object", "a number of another kind"};
  for (std::size_t i = 0; i < std::size(values); ++i) {
    for (const std::string member : {"tool_version", "host", "host_id", "windows", "time"}) {
      Json json = Snapshot();
      json[member] = Json::parse(values[i]);
      EXPECT_EQ(ProblemOf(json), "is damaged: " + member + " is " + types[i] + ", but should be a text");
    }
  }
  Json json = Snapshot();
  json["schema_version"] = "2";
  EXPECT_EQ(ProblemOf(json), "is damaged: schema_version is a text, but should be a whole number");
  for (const Json& none : {Json(nullptr), Json(0)}) {
    json["schema_version"] = none;
    EXPECT_EQ(ProblemOf(json), "is damaged: it has no schema_version");
  }
  json = Snapshot();
  json["drivers"] = Json::object();
  EXPECT_EQ(ProblemOf(json), "is damaged: drivers is an object, but should be an array");
  json.erase("drivers");
  EXPECT_EQ(ProblemOf(json), "is damaged: it has no drivers");
  json.erase("schema_version");
  EXPECT_EQ(ProblemOf(json), "is damaged: it has no schema_version");
}

/// What a member that may be of type `expected` can be instead, and in words.
std::vector<std::pair<Json, std::string>> OtherThan(const std::string& expected) {
  std::vector<std::pair<Json, std::string>> others;
  for (const auto& [json, type] :
       {std::pair("\"x\"", "a text"), std::pair("5", "a whole number"), std::pair("-5", "a number of another kind"),
        std::pair("1.5", "a number of another kind"), std::pair("true", "true"),
        std::pair("{\"name\":[]}", "an object"), std::pair("[]", "an array")}) {
    if (type != expected && std::string("an array of texts").find(type) != 0)
      others.emplace_back(Json::parse(json), type);
  }
  return others;
}

struct TypeName {
  std::string operator()(std::string Record::*) const { return "a text"; }
  std::string operator()(std::optional<std::uint64_t> Record::*) const { return "a whole number"; }
  std::string operator()(bool Record::*) const { return "true"; }
  std::string operator()(std::vector<std::string> Record::*) const { return "an array of texts"; }
  std::string operator()(std::string (*)(const Record&)) const { return ""; }
};

TEST(Snapshot, WithAMemberOfAnotherTypeSaysWhichOne) {
  for (const Member& member : Members()) {
    const std::string expected = std::visit(TypeName(), member.source);
    if (expected.empty()) continue;
    for (const auto& [value, type] : OtherThan(expected)) {
      Json json = Snapshot();
      json["drivers"][2]["name"] = "smpraid.sys";
      json["drivers"][2][std::string(member.name)] = value;
      const std::string owner = member.isTitle ? "driver 3" : "driver 3 (smpraid.sys)";
      EXPECT_EQ(ProblemOf(json), "is damaged: " + owner + ": " + std::string(member.name) + " is " + type +
                                     ", but should be " + expected);
    }
  }
}

TEST(Snapshot, WithAListOfOtherThingsThanTextsSaysWhichOne) {
  Json json = Snapshot();
  json["drivers"][0]["name"] = "x";
  json["drivers"][0]["files"] = {"a", 5, "b", true};
  EXPECT_EQ(ProblemOf(json),
            "is damaged: driver 1 (x): files is an array with a whole number in it, "
            "but should be an array of texts");
  json["drivers"][0]["files"] = Json::parse(R"(["a", {"names": 5, "b": [1]}, "c"])");
  EXPECT_EQ(ProblemOf(json),
            "is damaged: driver 1 (x): files is an array with an object in it, "
            "but should be an array of texts");
}

TEST(Snapshot, NamesARecordThatSaysItsNameTooLate) {
  const std::string head = R"({"kind": "driverlist snapshot", "schema_version": 2, "drivers": [)";
  EXPECT_EQ(ProblemOf(head + R"({"kind": "service", "size": "5", "service": 5, "name": "late.sys"}]})"),
            "is damaged: driver 1 (late.sys): size is a text, but should be a whole number");
  EXPECT_EQ(ProblemOf(head + R"({"kind": "service"}, {"size": "5", "name": ")" + std::string(1000, 'x') + "\"}]}"),
            "is damaged: driver 2: size is a text, but should be a whole number");
}

TEST(Snapshot, WithoutKindsIsDamaged) {
  Json json = Snapshot();
  json["drivers"][1]["name"] = "x";
  json["drivers"][1].erase("kind");
  EXPECT_EQ(ProblemOf(json), "is damaged: driver 2 (x): it has no kind");
  json["drivers"][1]["kind"] = "luck";
  EXPECT_EQ(ProblemOf(json), "is damaged: driver 2 (x): its kind is unknown");
  json["drivers"][1]["kind"] = {"service"};
  EXPECT_EQ(ProblemOf(json), "is damaged: driver 2 (x): kind is an array, but should be a text");
}

TEST(Snapshot, HoldsObjectsOnly) {
  Json json = Snapshot();
  json["drivers"][3] = "driver";
  EXPECT_EQ(ProblemOf(json), "is damaged: driver 4 is a text, but should be an object");
  json["drivers"][0] = {1, 2};
  EXPECT_EQ(ProblemOf(json), "is damaged: driver 1 is an array, but should be an object");
}

TEST(Snapshot, IsNestedAsDeepAsItsRecordsAndNotMuchDeeper) {
  const std::string head = R"({"kind": "driverlist snapshot", "schema_version": 2, "drivers": [{"a": )";
  const auto nested = [&head](std::size_t depth) { return head + std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_EQ(ProblemOf(nested(13) + R"(, "kind": "service"}]})"), "");
  for (const std::size_t depth : {14u, 15'000u, 1'000'000u}) {
    EXPECT_EQ(ProblemOf(nested(depth)), "is nested more than 16 levels deep") << depth;
  }
}

/// A snapshot of so many small records.
class ManyRecords : public std::streambuf {
 public:
  explicit ManyRecords(std::size_t count) : m_left(count) {
    Give(R"({"kind":"driverlist snapshot","schema_version":2,"drivers":[)");
  }

 protected:
  int_type underflow() override {
    if (m_isOver) return traits_type::eof();
    m_isOver = m_left == 0;
    std::string part = m_isOver ? "]}" : "";
    for (std::size_t i = std::min<std::size_t>(m_left, 1000); i > 0; --i) part += --m_left > 0 ? Driver + "," : Driver;
    Give(part);
    return traits_type::to_int_type(*gptr());
  }

 private:
  static inline const std::string Driver = R"({"kind":"chipset"})";

  void Give(const std::string& part) {
    m_part = part;
    setg(m_part.data(), m_part.data(), m_part.data() + m_part.size());
  }

  std::size_t m_left;
  std::string m_part;
  bool m_isOver = false;
};

TEST(Snapshot, HoldsAMillionRecordsAndNoMore) {
  ManyRecords most(MostRecords);
  EXPECT_EQ(ReadSnapshot(most).records.size(), MostRecords);
  ManyRecords more(MostRecords + 1);
  try {
    ReadSnapshot(more);
    FAIL() << "was read";
  } catch (const InputProblem& problem) {
    EXPECT_STREQ(problem.what(), "contains more than 1,000,000 drivers");
  }
}

/// `text` as nobody would make it on purpose.
std::string Mutated(std::string text, test::Random& random) {
  static const std::string tokens[] = {
      "{",  "}",     "[",  "]",    ",",        ":",  "\"",   "\\",    "null",         "true",
      "-1", "1e400", "\n", "\xFF", "\"kind\"", "{}", "[[[[", "\\u12", "\xED\xA0\x80", "99999999999999999999"};
  for (std::size_t changes = 1 + random.Below(8); changes > 0; --changes) {
    const std::size_t at = random.Below(text.size() + 1);
    const std::size_t size = random.Below(std::min<std::size_t>(text.size() - at, 200) + 1);
    switch (random.Below(6)) {
      case 0:
        text.resize(at);
        break;
      case 1:
        text.erase(at, size);
        break;
      case 2:
        text.insert(at, text.substr(random.Below(text.size() + 1), size));
        break;
      case 3:
        text.insert(at, random.Pick(tokens));
        break;
      case 4:
        if (at < text.size()) text[at] = random.Byte();
        break;
      default:
        text.replace(at, size, random.Text(random.Size(200)));
    }
  }
  return text;
}

TEST(HostileSnapshots, AreReadOrRefused) {
  const std::string texts[] = {SnapshotText(FourRecords()), test::Schema1Text,
                               nlohmann::json::parse(SnapshotText(FourRecords())).dump()};
  test::HostileBatch batch("snapshots");
  std::size_t read = 0;
  std::size_t refused = 0;
  batch.ForEach([&](test::Random& random) {
    const std::string text = random.OneIn(20) ? random.Text(random.Size(2000)) : Mutated(random.Pick(texts), random);
    try {
      const Comparison comparison = Compare(ReadSnapshotText(text), ReadSnapshotText(random.Pick(texts)));
      for (const Difference& difference : comparison.differences) ChangesOf(difference);
      ++read;
    } catch (const InputProblem& problem) {
      EXPECT_STRNE(problem.what(), "");
      ++refused;
    }
  });
  RecordProperty("read", static_cast<int>(read));
  RecordProperty("refused", static_cast<int>(refused));
  EXPECT_GT(read, batch.Size() / 50);
  EXPECT_GT(refused, batch.Size() / 50);
}

}  // namespace
