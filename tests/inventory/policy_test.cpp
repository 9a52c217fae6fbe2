#include "inventory/policy.h"

#include <gmock/gmock.h>

#include <sstream>

#include "hostile.h"
#include "inventory/input.h"
#include "inventory/jsontree.h"
#include "inventory/policycheck.h"
#include "mutants.h"

using namespace inventory;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

Policy Read(const std::string& text) {
  std::stringbuf buffer(text, std::ios_base::in);
  return ReadPolicy(buffer);
}

/// Empty when it is a policy.
std::string ProblemOf(const std::string& text) {
  try {
    Read(text);
  } catch (const InputProblem& problem) {
    return problem.what();
  }
  return "";
}

/// Of a policy of one rule with these members.
std::string ProblemOfRule(const std::string& members) {
  return ProblemOf("{\"rules\": [{\"name\": \"r\", " + members + "}]}");
}

TEST(Policy, IsReadWithAllItsMembers) {
  const Policy policy = Read(R"({"$schema": "policy.schema.json", "name": "n", "description": "d", "rules": [
    {"name": "a", "severity": "critical", "message": "m", "where": ["kind=service", "state=running"],
     "forbid": [["provider=evil*"], ["name=x", "version<2"]]},
    {"name": "b", "driver": "net.sys", "minimum_version": "2.0"}]})");
  EXPECT_EQ(policy.name, "n");
  EXPECT_EQ(policy.description, "d");
  ASSERT_EQ(policy.rules.size(), 2u);
  const PolicyRule& a = policy.rules[0];
  EXPECT_EQ(a.name, "a");
  EXPECT_EQ(a.severity, Severity::Critical);
  EXPECT_EQ(a.message, "m");
  ASSERT_EQ(a.clauses.size(), 1u);
  using Texts = std::vector<std::vector<std::string>>;
  EXPECT_EQ(a.clauses[0].demand, Demand::Forbid);
  EXPECT_EQ(a.clauses[0].where.texts, Texts({{"kind=service", "state=running"}}));
  EXPECT_EQ(a.clauses[0].conditions.texts, Texts({{"provider=evil*"}, {"name=x", "version<2"}}));
  const PolicyRule& b = policy.rules[1];
  EXPECT_EQ(b.severity, Severity::Medium);
  EXPECT_EQ(b.message, "");
  EXPECT_EQ(b.clauses[0].demand, Demand::Expect);
  EXPECT_EQ(b.clauses[0].where.texts, Texts({{"kind=service", "name=net.sys", "kind=service"}}));
  EXPECT_EQ(b.clauses[0].conditions.texts, Texts({{"version>=2.0"}}));
}

TEST(Policy, WithSomethingUnknownIsRefusedWithItsPlace) {
  EXPECT_EQ(ProblemOf(R"({"rulez": []})"), "is no policy: /rulez: there is no such member; did you mean \"rules\"?");
  EXPECT_EQ(ProblemOf(R"({"x~/y": 1})"),
            "is no policy: /x~0~1y: there is no such member; there are $schema, name, description, rules");
  EXPECT_EQ(ProblemOfRule("\"forbit\": [\"name=a\"]"),
            "is no policy: /rules/0/forbit: there is no such member; did you mean \"forbid\"?");
  EXPECT_EQ(ProblemOfRule("\"severity\": \"hihg\", \"signed\": true"),
            "is no policy: /rules/0/severity: \"hihg\" is no severity; did you mean \"high\"?");
  EXPECT_EQ(ProblemOfRule("\"forbid\": [\"name=a\", \"stat=b\"]"),
            "is no policy: /rules/0/forbid/1: there is no member \"stat\"; did you mean \"state\"?");
  EXPECT_EQ(ProblemOfRule("\"expect\": [[\"name=a\"], [\"name=b\", \"provider<c\"]]"),
            "is no policy: /rules/0/expect/1/1: provider is a text, which < cannot compare: use = or != with a "
            "pattern, such as provider=a*");
  EXPECT_EQ(ProblemOfRule("\"start_type\": \"Automatik\""),
            "is no policy: /rules/0/start_type: \"Automatik\" is no start type; did you mean \"Automatic\"?");
}

TEST(Policy, WithAnotherTypeIsRefusedWithItsPlace) {
  EXPECT_EQ(ProblemOf("[]"), "is no policy: it is an array, where an object is expected");
  EXPECT_EQ(ProblemOf("{}"), "is no policy: it has no rules");
  EXPECT_EQ(ProblemOf(R"({"rules": {}})"), "is no policy: /rules: it is an object, where an array is expected");
  EXPECT_EQ(ProblemOf(R"({"rules": []})"), "is no policy: /rules: it is empty");
  EXPECT_EQ(ProblemOf(R"({"rules": [1]})"), "is no policy: /rules/0: it is a number, where an object is expected");
  EXPECT_EQ(ProblemOf(R"({"name": -1.5, "rules": []})"),
            "is no policy: /name: it is a number, where a text is expected");
  EXPECT_EQ(ProblemOfRule("\"signed\": false"), "is no policy: /rules/0/signed: it is false, where true is expected");
  EXPECT_EQ(ProblemOfRule("\"forbid\": null"),
            "is no policy: /rules/0/forbid: it is null, where a text or an array of texts is expected");
  EXPECT_EQ(ProblemOfRule("\"forbid\": []"), "is no policy: /rules/0/forbid: it is empty");
  EXPECT_EQ(ProblemOfRule("\"forbid\": [[]]"), "is no policy: /rules/0/forbid/0: it is empty");
  EXPECT_EQ(ProblemOfRule("\"forbid\": [[\"name=a\"], \"name=b\"]"),
            "is no policy: /rules/0/forbid/1: it is a text, where an array, since others beside it are alternatives, "
            "is expected");
  EXPECT_EQ(ProblemOfRule("\"forbid\": [1]"),
            "is no policy: /rules/0/forbid/0: it is a number, where a text is expected");
}

TEST(Policy, WhoseRulesContradictThemselvesIsRefused) {
  EXPECT_EQ(ProblemOfRule("\"where\": \"kind=service\""),
            "is no policy: /rules/0: it demands nothing: one of forbid, expect, require, minimum_version, maximum_age, "
            "start_type, signed, required_drivers, forbidden_drivers is expected");
  EXPECT_EQ(ProblemOfRule("\"forbid\": \"name=a\", \"signed\": true"),
            "is no policy: /rules/0: it has both \"forbid\" and \"signed\", where one is expected");
  EXPECT_EQ(ProblemOf(R"({"rules": [{"signed": true}]})"), "is no policy: /rules/0: it has no name");
  EXPECT_EQ(ProblemOf(R"({"rules": [{"name": "", "signed": true}]})"), "is no policy: /rules/0/name: it is empty");
  EXPECT_EQ(ProblemOf(R"({"rules": [{"name": "a", "signed": true}, {"name": "a", "signed": true}]})"),
            "is no policy: /rules/1/name: another rule is called \"a\"");
  EXPECT_EQ(ProblemOfRule("\"signed\": true, \"signed\": true"), "has a member twice: /rules/0/signed");
}

TEST(Policy, WithAValueThatComparesWithNothingIsRefused) {
  EXPECT_EQ(ProblemOfRule("\"maximum_age\": \"2020\""),
            "is no policy: /rules/0/maximum_age: \"2020\" is no age, such as 5y: units are h, d, w and y");
  EXPECT_THAT(ProblemOfRule("\"maximum_age\": \"y\""),
              StartsWith("is no policy: /rules/0/maximum_age: \"y\" is neither "));
  EXPECT_THAT(ProblemOfRule("\"maximum_age\": \"99999999y\""), StartsWith("is no policy: /rules/0/maximum_age: "));
  EXPECT_THAT(ProblemOfRule("\"minimum_version\": \"1.*\""), StartsWith("is no policy: /rules/0/minimum_version: "));
  EXPECT_EQ(ProblemOfRule("\"minimum_version\": \"\""), "is no policy: /rules/0/minimum_version: it is empty");
}

TEST(Policy, KeepsItsLimits) {
  std::string rules;
  for (std::size_t i = 0; i <= MostPolicyRules; ++i) {
    rules += (i == 0 ? "" : ",") + ("{\"name\": \"" + std::to_string(i)) + "\", \"signed\": true}";
  }
  EXPECT_EQ(ProblemOf("{\"rules\": [" + rules + "]}"), "is no policy: /rules: it has more than 1,000 rules");
  std::string conditions = "\"name=a\"";
  for (std::size_t i = 0; i < MostPolicyConditions; ++i) conditions += ",\"name=a\"";
  EXPECT_EQ(ProblemOfRule("\"forbid\": [" + conditions + "]"), "is no policy: it has more than 5,000 conditions");
  EXPECT_EQ(ProblemOfRule("\"forbid\": \"name=" + std::string(LongestCondition, 'a') + "\""),
            "is no policy: /rules/0/forbid: it is longer than 1,000 bytes");
  std::string values = "1";
  for (std::size_t i = 0; i < MostTreeValues; ++i) values += ",1";
  EXPECT_EQ(ProblemOf("[" + values + "]"), "contains more than 20,000 values");
  std::string texts = "1";
  for (std::size_t i = 0; i < 3; ++i) texts += ",\"" + std::string(MostTreeBytes / 2, 'a') + "\"";
  EXPECT_EQ(ProblemOf("[" + texts + "]"), "contains more than 1 MiB of text");
  EXPECT_EQ(ProblemOf(std::string(1000, '[')), "is nested more than 16 levels deep");
  EXPECT_EQ(ProblemOf("{\"rules\": "), "is damaged: it ends early");
  EXPECT_EQ(
      ProblemOf("{\"" + std::string(5000, 'x') + "\": 1}").size(),
      std::string("is no policy: /: there is no such member; there are $schema, name, description, rules").size() + 103)
      << "a sentence stays readable";
}

/// All that the language has.
constexpr char Everything[] = R"({"name": "n", "description": "d", "rules": [
  {"name": "a", "severity": "low", "message": "m", "where": ["kind=service"], "forbid": [["provider=e*"], ["size>1"]]},
  {"name": "b", "driver": "net.sys", "minimum_version": "2.0"},
  {"name": "c", "maximum_age": "5y"},
  {"name": "d", "start_type": ["Manual", "Disabled"]},
  {"name": "e", "signed": true},
  {"name": "f", "required_drivers": ["net.sys", "disk.sys"]},
  {"name": "g", "forbidden_drivers": "evil*.sys"},
  {"name": "h", "where": "kind=device", "expect": "problem_code="},
  {"name": "i", "require": ["known!=*malicious*", "signed_at>2020"]}]})";

Inventory Machine() {
  Inventory inventory;
  inventory.head.time = "2024-05-06T07:08:09Z";
  Record service;
  service.service = "net";
  service.name = "net.sys";
  service.version = "1.0";
  service.size = 7;
  inventory.records = {service};
  return inventory;
}

TEST(Policy, ThatIsHostileIsReadOrRefused) {
  ASSERT_EQ(ProblemOf(Everything), "");
  std::size_t refused = 0;
  test::HostileBatch batch("policy");
  batch.ForEach([&](test::Random& random) {
    try {
      std::stringbuf buffer(test::Damaged(Everything, random), std::ios_base::in);
      const Policy policy = ReadPolicy(buffer);
      EXPECT_EQ(Check(policy, Machine()).results.size(), policy.rules.size());
    } catch (const InputProblem& problem) {
      ++refused;
      EXPECT_LT(std::string(problem.what()).size(), 3000u);
    }
  });
  EXPECT_GT(refused, batch.Size() / 2);
}

TEST(JsonPointer, EscapesWhatItUsesItself) {
  EXPECT_EQ(PointerTo("/a", "b/c~d"), "/a/b~1c~0d");
  EXPECT_EQ(PointerTo("", std::size_t{3}), "/3");
}

}  // namespace
