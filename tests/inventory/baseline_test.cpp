#include "inventory/baseline.h"

#include <gmock/gmock.h>

#include <sstream>

#include "hostile.h"
#include "inventories.h"
#include "inventory/input.h"
#include "inventory/severity.h"
#include "mutants.h"

using namespace inventory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::vector<Finding> Accepted = {
    {"unsigned", "net", "C:\\net.sys", Severity::High, "get a signed version", "unsigned-01"},
    {"unused-package", "Ger\u00E4t.inf", "e", Severity::Low, "remove it", "unused-package-02"}};

Inventory Machine(bool isVerified = false) {
  Inventory inventory;
  inventory.head = {"0.1.0", "host", "8f0c", "10.0.1", "2024-05-06T07:08:09Z"};
  inventory.isVerified = isVerified;
  return inventory;
}

Baseline Read(const std::string& text) {
  std::stringbuf buffer(text, std::ios_base::in);
  return ReadBaseline(buffer);
}

/// Empty when it is a baseline.
std::string ProblemOf(const std::string& text) {
  try {
    Read(text);
  } catch (const InputProblem& problem) {
    return problem.what();
  }
  return "";
}

Json Written() { return Json::parse(BaselineText(Accepted, Machine())); }

std::string ProblemWith(const std::string& member, const Json& value) {
  Json json = Written();
  json[member] = value;
  return ProblemOf(json.dump());
}

std::string ProblemWithout(const std::string& member) {
  Json json = Written();
  json.erase(member);
  return ProblemOf(json.dump());
}

TEST(Baseline, HoldsTheFindingsAsTheirDocumentDoes) {
  EXPECT_EQ(BaselineText({Accepted[0]}, Machine(true)), R"({
  "kind": "driverlist baseline",
  "schema_version": 2,
  "tool_version": "0.1.0",
  "host": "host",
  "host_id": "8f0c",
  "windows": "10.0.1",
  "time": "2024-05-06T07:08:09Z",
  "verified": true,
  "findings": [
    {
      "rule": "unsigned",
      "severity": "high",
      "id": "unsigned-01",
      "subject": "net",
      "evidence": "C:\\net.sys",
      "next_step": "get a signed version"
    }
  ]
}
)");
}

TEST(Baseline, IsReadAsItWasWritten) {
  const Baseline baseline = Read(BaselineText(Accepted, Machine(true)));
  EXPECT_EQ(baseline.head.host_id, "8f0c");
  EXPECT_EQ(baseline.head.time, "2024-05-06T07:08:09Z");
  EXPECT_TRUE(baseline.isVerified);
  EXPECT_THAT(baseline.ids, ElementsAre("unsigned-01", "unused-package-02"));
  EXPECT_FALSE(Read(BaselineText({}, Machine())).isVerified);
  EXPECT_THAT(Read(BaselineText({}, Machine())).ids, ElementsAre());
}

TEST(Baseline, IsReadWithMembersInAnyOrderAndUnknownOnes) {
  const Baseline baseline = Read(R"({"findings": [{"x": [{"id": "no"}], "id": "a-1", "y": {}}], "verified": false,
    "new": {"findings": [{"id": "b-2"}], "kind": "list"}, "schema_version": 2, "kind": "driverlist baseline"})");
  EXPECT_THAT(baseline.ids, ElementsAre("a-1"));
}

TEST(Baseline, HidesWhatItHasAndNothingElse) {
  const Baseline baseline = Read(BaselineText(Accepted, Machine()));
  std::vector<Finding> findings = Accepted;
  findings.push_back({"unsigned", "new", "e", Severity::High, "s", "unsigned-03"});
  findings.push_back({"unsigned", "unrecognised", "e", Severity::High, "s", ""});
  const NewFindings found = NewSince(baseline, findings);
  EXPECT_EQ(found.hidden, 2u);
  ASSERT_EQ(found.findings.size(), 2u);
  EXPECT_EQ(found.findings[0].subject, "new");
  EXPECT_EQ(found.findings[1].subject, "unrecognised");
}

std::string Incomparable(const Inventory& accepted, const Inventory& examined) {
  try {
    RequireComparable(Read(BaselineText(Accepted, accepted)), examined);
  } catch (const InputProblem& problem) {
    return problem.what();
  }
  return "";
}

TEST(Baseline, IsSilentOnlyAboutWhatWasLookedAt) {
  EXPECT_EQ(Incomparable(Machine(), Machine()), "");
  EXPECT_EQ(Incomparable(Machine(true), Machine(true)), "");
  EXPECT_EQ(Incomparable(Machine(), Machine(true)), "") << "what only verification finds is new then";
  EXPECT_EQ(Incomparable(Machine(true), Machine()),
            "was made of verified images, and these are not verified: what it would hide was not looked at");
  Inventory snapshot = Machine();
  snapshot.records = {test::ServiceRecord("net", "1")};
  snapshot.records.front().signature = "valid";
  EXPECT_EQ(Incomparable(Machine(true), snapshot), "") << "a snapshot that was verified";
}

TEST(Baseline, OfAnotherMachineIsRefused) {
  Inventory other = Machine();
  other.head.host_id = "8F0C";
  EXPECT_EQ(Incomparable(other, Machine()), "");
  other.head.host_id = "1234";
  EXPECT_EQ(Incomparable(other, Machine()),
            "is the baseline of another machine: its host_id is \"1234\", and this is \"8f0c\"");
  other.head.host_id.clear();
  EXPECT_EQ(Incomparable(other, Machine()), "") << "nobody knows";
}

TEST(Baseline, ThatIsForeignIsRefused) {
  for (const char* const text : {"", "x", "[]", "{}", "null", "{\"kind\": \"driverlist snapshot\"}", "[[1]]",
                                 "{\"findings\": []}", "{\"kind\": 1}"}) {
    EXPECT_EQ(ProblemOf(text), "is not a baseline of driverlist") << text;
  }
}

TEST(Baseline, ThatIsDamagedIsRefused) {
  const std::string text = BaselineText(Accepted, Machine());
  EXPECT_EQ(ProblemOf(text.substr(0, text.size() - 3)), "is damaged: it ends early");
  EXPECT_EQ(ProblemWithout("findings"), "is damaged: it has no findings");
  EXPECT_EQ(ProblemWithout("verified"), "is damaged: it does not say whether images were verified");
  EXPECT_EQ(ProblemWithout("schema_version"), "is damaged: it has no schema_version that this driverlist knows");
  EXPECT_EQ(ProblemWith("schema_version", 3),
            "was written by a newer driverlist: its schema version is 3, and this one reads 2");
  EXPECT_EQ(ProblemWith("schema_version", 1), "is damaged: it has no schema_version that this driverlist knows");
  EXPECT_EQ(ProblemWith("schema_version", "2"),
            "is damaged: schema_version is a text, where a whole number is expected");
  EXPECT_EQ(ProblemWith("verified", "yes"), "is damaged: verified is a text, where true or false is expected");
  EXPECT_EQ(ProblemWith("time", Json::array()), "is damaged: time is an array, where a text is expected");
  EXPECT_EQ(ProblemWith("findings", 1), "is damaged: findings is a whole number, where an array is expected");
  EXPECT_EQ(ProblemWith("findings", Json::parse("[1]")), "is damaged: finding 1 is no object");
  EXPECT_EQ(ProblemWith("findings", Json::parse("[{\"id\": \"a\"}, []]")), "is damaged: finding 2 is no object");
  EXPECT_EQ(ProblemWith("findings", Json::parse("[{\"id\": \"a\"}, {}]")), "is damaged: finding 2 has no id");
  for (const char* const id : {"1", "\"\"", "null", "[]", "{}"}) {
    EXPECT_EQ(ProblemWith("findings", Json::parse("[{\"id\": " + std::string(id) + "}]")),
              "is damaged: the id of finding 1 is no text that recognises it");
  }
  EXPECT_EQ(ProblemOf(R"({"kind": "driverlist baseline", "findings": [{"id": "a", "id": "b"}]})"),
            "is damaged: finding 1 has two identities");
  EXPECT_EQ(ProblemOf(R"({"kind": "driverlist baseline", "findings": [], "findings": []})"),
            "is damaged: it has findings twice");
}

TEST(Baseline, KeepsItsLimits) {
  EXPECT_EQ(ProblemWith("x", std::string(2 << 20, 'a')), "contains a text of more than 1 MiB");
  EXPECT_EQ(ProblemOf(std::string(100000, '[')), "is nested more than 16 levels deep");
  std::string many = R"({"kind": "driverlist baseline", "findings": [{"id": "a"})";
  for (std::size_t i = 0; i < MostAccepted; ++i) many += ",{\"id\":\"a\"}";
  EXPECT_EQ(ProblemOf(many), "contains more than 1,000,000 findings");
}

TEST(Baseline, ThatIsHostileIsReadOrRefused) {
  const std::string text = BaselineText(Accepted, Machine(true));
  std::size_t refused = 0;
  test::HostileBatch batch("baseline");
  batch.ForEach([&](test::Random& random) {
    const std::string problem = ProblemOf(test::Damaged(text, random));
    refused += problem.empty() ? 0 : 1;
    EXPECT_EQ(problem.find('\n'), std::string::npos);
  });
  EXPECT_GT(refused, batch.Size() / 4);
}

}  // namespace
