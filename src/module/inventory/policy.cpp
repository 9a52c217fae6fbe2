#include "inventory/policy.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "inventory/input.h"
#include "inventory/jsontree.h"
#include "inventory/nearestname.h"
#include "inventory/predicates.h"

namespace inventory {
namespace {

using Names = std::vector<std::string_view>;

/// The member that tells JSON editors where the schema is.
constexpr std::string_view SchemaReference = "$schema";
constexpr std::string_view Drivers = "kind=service";
constexpr std::string_view StartTypes[] = {"Boot Start", "System Start", "Automatic", "Manual", "Disabled"};

[[noreturn]] void Refuse(const std::string& pointer, const std::string& problem) {
  throw InputProblem("is no policy: " + (pointer.empty() ? "" : pointer + ": ") + problem);
}

/// `text`, quoted and cut for use in a sentence.
std::string Quoted(std::string_view text) {
  constexpr std::size_t longest = 100;
  return "\"" + std::string(text.substr(0, longest)) + (text.size() > longest ? "..." : "") + "\"";
}

std::string Listed(const Names& names) {
  std::string list;
  for (const std::string_view name : names) list.append(list.empty() ? "" : ", ").append(name);
  return list;
}

/// What the author of a policy may have meant by `name`.
std::string Hint(std::string_view name, const Names& names) {
  const std::string_view nearest = NearestName(name, names);
  return nearest.empty() ? "; there are " + Listed(names) : "; did you mean " + Quoted(nearest) + "?";
}

std::string TypeOf(const Json& json) {
  if (json.is_null()) return "null";
  if (json.is_boolean()) return json.get<bool>() ? "true" : "false";
  if (json.is_number()) return "a number";
  if (json.is_string()) return "a text";
  return json.is_array() ? "an array" : "an object";
}

[[noreturn]] void RefuseType(const std::string& pointer, const Json& found, const std::string& expected) {
  Refuse(pointer, "it is " + TypeOf(found) + ", where " + expected + " is expected");
}

const Json& RequireObject(const Json& json, const std::string& pointer, const Names& members) {
  if (!json.is_object()) RefuseType(pointer, json, "an object");
  for (const auto& [name, value] : json.items()) {
    if (std::find(members.begin(), members.end(), name) != members.end()) continue;
    Refuse(PointerTo(pointer, name), "there is no such member" + Hint(name, members));
  }
  return json;
}

const Json* Member(const Json& object, std::string_view name) {
  const auto found = object.find(std::string(name));
  return found == object.end() ? nullptr : &*found;
}

std::string TextIn(const Json& json, const std::string& pointer) {
  if (!json.is_string()) RefuseType(pointer, json, "a text");
  std::string text = json.get<std::string>();
  if (text.empty()) Refuse(pointer, "it is empty");
  return text;
}

/// The text of an optional member; empty without it.
std::string OptionalText(const Json& object, const std::string& pointer, std::string_view name) {
  const Json* const member = Member(object, name);
  return member == nullptr ? std::string() : TextIn(*member, PointerTo(pointer, name));
}

/// A text or an array of texts.
std::vector<std::string> TextsIn(const Json& json, const std::string& pointer) {
  if (json.is_string()) return {TextIn(json, pointer)};
  if (!json.is_array()) RefuseType(pointer, json, "a text or an array of texts");
  if (json.empty()) Refuse(pointer, "it is empty");
  std::vector<std::string> texts;
  for (const Json& text : json) texts.push_back(TextIn(text, PointerTo(pointer, texts.size())));
  return texts;
}

/// A condition, and where it stands in the policy.
struct Written {
  std::string text;
  std::string pointer;
};

/// Alternatives, each of them conditions that must all hold.
using WrittenConditions = std::vector<std::vector<Written>>;

std::vector<Written> AlternativeIn(const Json& json, const std::string& pointer) {
  std::vector<Written> alternative;
  if (json.is_array() && !json.empty()) {
    for (const Json& text : json) {
      const std::string place = PointerTo(pointer, alternative.size());
      alternative.push_back({TextIn(text, place), place});
    }
    return alternative;
  }
  for (std::string& text : TextsIn(json, pointer)) alternative.push_back({std::move(text), pointer});
  return alternative;
}

/// A condition, an array of conditions that must all hold, or an array of such arrays, which are alternatives.
WrittenConditions ConditionsIn(const Json& json, const std::string& pointer) {
  const auto isArray = [](const Json& value) { return value.is_array(); };
  if (!json.is_array() || std::none_of(json.begin(), json.end(), isArray)) return {AlternativeIn(json, pointer)};
  WrittenConditions alternatives;
  for (const Json& alternative : json) {
    const std::string place = PointerTo(pointer, alternatives.size());
    if (!alternative.is_array()) RefuseType(place, alternative, "an array, since others beside it are alternatives,");
    alternatives.push_back(AlternativeIn(alternative, place));
  }
  return alternatives;
}

/// A clause whose conditions are not parsed yet.
struct WrittenClause {
  WrittenConditions where;
  Demand demand;
  WrittenConditions conditions;
};

using WrittenClauses = std::vector<WrittenClause>;

/// All of `texts`, as conditions that must all hold and stand at one place.
WrittenConditions All(const std::vector<std::string>& texts, const std::string& pointer) {
  WrittenConditions conditions(1);
  for (const std::string& text : texts) conditions.front().push_back({text, pointer});
  return conditions;
}

template <Demand Which>
WrittenClauses General(const Json& json, const std::string& pointer) {
  return {{{}, Which, ConditionsIn(json, pointer)}};
}

WrittenClauses MinimumVersion(const Json& json, const std::string& pointer) {
  return {{All({std::string(Drivers)}, pointer), Demand::Expect, All({"version>=" + TextIn(json, pointer)}, pointer)}};
}

/// An image has the time of its file, a package has a date of its own. The dates of what came with Windows say nothing.
WrittenClauses MaximumAge(const Json& json, const std::string& pointer) {
  const std::string age = TextIn(json, pointer);
  constexpr std::string_view units = "hdwy";
  if (units.find(age.back()) == std::string_view::npos) {
    Refuse(pointer, Quoted(age) + " is no age, such as 5y: units are h, d, w and y");
  }
  return {{All({std::string(Drivers), "image_missing=false"}, pointer), Demand::Expect,
           All({"image_time<=" + age}, pointer)},
          {All({"kind=package", "inf=oem*"}, pointer), Demand::Expect, All({"inf_date<=" + age}, pointer)}};
}

WrittenClauses StartType(const Json& json, const std::string& pointer) {
  WrittenConditions types;
  const Names known(std::begin(StartTypes), std::end(StartTypes));
  for (const std::string& type : TextsIn(json, pointer)) {
    if (std::find(known.begin(), known.end(), type) == known.end()) {
      Refuse(pointer, Quoted(type) + " is no start type" + Hint(type, known));
    }
    types.push_back({{"start_type=" + type, pointer}});
  }
  return {{All({std::string(Drivers)}, pointer), Demand::Expect, std::move(types)}};
}

WrittenClauses Signed(const Json& json, const std::string& pointer) {
  if (json != Json(true)) RefuseType(pointer, json, "true");
  return {
      {All({std::string(Drivers), "image_missing=false"}, pointer), Demand::Expect, All({"signature=valid"}, pointer)}};
}

WrittenClauses RequiredDrivers(const Json& json, const std::string& pointer) {
  WrittenClauses clauses;
  for (const std::string& driver : TextsIn(json, pointer)) {
    clauses.push_back({{}, Demand::Require, All({std::string(Drivers), "name=" + driver}, pointer)});
  }
  return clauses;
}

/// A package brings a driver to the machine even if no service loads it.
WrittenClauses ForbiddenDrivers(const Json& json, const std::string& pointer) {
  WrittenConditions drivers;
  for (const std::string& driver : TextsIn(json, pointer)) {
    drivers.push_back({{"name=" + driver, pointer}});
    drivers.push_back({{"files=" + driver, pointer}});
  }
  return {{{}, Demand::Forbid, std::move(drivers)}};
}

/// A member of a rule that states a demand.
struct DemandMember {
  std::string_view name;
  WrittenClauses (*read)(const Json& json, const std::string& pointer);
};

constexpr std::array<DemandMember, 9> DemandMembers = {{{"forbid", &General<Demand::Forbid>},
                                                        {"expect", &General<Demand::Expect>},
                                                        {"require", &General<Demand::Require>},
                                                        {"minimum_version", &MinimumVersion},
                                                        {"maximum_age", &MaximumAge},
                                                        {"start_type", &StartType},
                                                        {"signed", &Signed},
                                                        {"required_drivers", &RequiredDrivers},
                                                        {"forbidden_drivers", &ForbiddenDrivers}}};

Names DemandNames() {
  Names names;
  for (const DemandMember& member : DemandMembers) names.push_back(member.name);
  return names;
}

Names RuleMembers() {
  Names names = {"name", "severity", "message", "driver", "where"};
  const Names demands = DemandNames();
  names.insert(names.end(), demands.begin(), demands.end());
  return names;
}

/// The demand of a rule; there must be exactly one.
WrittenClauses DemandOf(const Json& rule, const std::string& pointer) {
  const DemandMember* demand = nullptr;
  for (const DemandMember& member : DemandMembers) {
    if (Member(rule, member.name) == nullptr) continue;
    if (demand != nullptr) {
      Refuse(pointer,
             "it has both " + Quoted(demand->name) + " and " + Quoted(member.name) + ", where one is expected");
    }
    demand = &member;
  }
  if (demand == nullptr) Refuse(pointer, "it demands nothing: one of " + Listed(DemandNames()) + " is expected");
  return demand->read(*Member(rule, demand->name), PointerTo(pointer, demand->name));
}

Severity SeverityOf(const Json& rule, const std::string& pointer) {
  const std::string text = OptionalText(rule, pointer, "severity");
  if (text.empty()) return Severity::Medium;
  if (const std::optional<Severity> severity = SeverityNamed(text)) return *severity;
  Names names;
  for (const Severity severity : Severities) names.push_back(SeverityName(severity));
  Refuse(PointerTo(pointer, "severity"), Quoted(text) + " is no severity" + Hint(text, names));
}

/// `a` and `b`: every alternative of one combined with every alternative of the other.
WrittenConditions Both(const WrittenConditions& a, const WrittenConditions& b) {
  if (a.empty() || b.empty()) return a.empty() ? b : a;
  WrittenConditions both;
  for (const auto& first : a) {
    for (const auto& second : b) {
      both.push_back(first);
      both.back().insert(both.back().end(), second.begin(), second.end());
    }
  }
  return both;
}

/// Which records a rule is about, apart from what its demand says.
WrittenConditions WhereOf(const Json& rule, const std::string& pointer) {
  WrittenConditions where;
  if (const Json* const conditions = Member(rule, "where"))
    where = ConditionsIn(*conditions, PointerTo(pointer, "where"));
  const std::string driver = OptionalText(rule, pointer, "driver");
  if (driver.empty()) return where;
  return Both(All({std::string(Drivers), "name=" + driver}, PointerTo(pointer, "driver")), where);
}

/// Reads one policy.
class PolicyReader {
 public:
  Policy Read(const Json& json) {
    RequireObject(json, "", {SchemaReference, "name", "description", "rules"});
    Policy policy;
    policy.name = OptionalText(json, "", "name");
    policy.description = OptionalText(json, "", "description");
    const Json* const rules = Member(json, "rules");
    if (rules == nullptr) Refuse("", "it has no rules");
    const std::string pointer = PointerTo("", "rules");
    if (!rules->is_array()) RefuseType(pointer, *rules, "an array");
    if (rules->empty()) Refuse(pointer, "it is empty");
    if (rules->size() > MostPolicyRules) Refuse(pointer, "it has more than 1,000 rules");
    for (const Json& rule : *rules) policy.rules.push_back(RuleIn(rule, PointerTo(pointer, policy.rules.size())));
    return policy;
  }

 private:
  PolicyRule RuleIn(const Json& json, const std::string& pointer) {
    RequireObject(json, pointer, RuleMembers());
    PolicyRule rule;
    if (Member(json, "name") == nullptr) Refuse(pointer, "it has no name");
    rule.name = OptionalText(json, pointer, "name");
    if (!m_names.insert(rule.name).second) {
      Refuse(PointerTo(pointer, "name"), "another rule is called " + Quoted(rule.name));
    }
    rule.severity = SeverityOf(json, pointer);
    rule.message = OptionalText(json, pointer, "message");
    const WrittenConditions where = WhereOf(json, pointer);
    for (const WrittenClause& clause : DemandOf(json, pointer)) {
      rule.clauses.push_back({Made(Both(where, clause.where)), clause.demand, Made(clause.conditions)});
    }
    return rule;
  }

  PolicyConditions Made(const WrittenConditions& written) {
    PolicyConditions made;
    for (const auto& alternative : written) {
      made.conditions.emplace_back();
      made.texts.emplace_back();
      for (const Written& condition : alternative) {
        made.conditions.back().push_back(ConditionIn(condition));
        made.texts.back().push_back(condition.text);
      }
    }
    return made;
  }

  Condition ConditionIn(const Written& written) {
    if (++m_conditions > MostPolicyConditions) Refuse("", "it has more than 5,000 conditions");
    if (written.text.size() > LongestCondition) Refuse(written.pointer, "it is longer than 1,000 bytes");
    try {
      return {written.text, RecordColumns()};
    } catch (const ConditionProblem& problem) {
      Refuse(written.pointer, problem.what());
    }
  }

  std::set<std::string> m_names;
  std::size_t m_conditions = 0;
};

bool AsksFor(const PolicyConditions& conditions, const std::function<bool(const Column& member)>& isMeant) {
  for (const auto& alternative : conditions.conditions) {
    for (const Condition& condition : alternative) {
      if (isMeant(RecordColumns()[condition.ColumnIndex()])) return true;
    }
  }
  return false;
}

}  // namespace

Policy ReadPolicy(std::streambuf& text) { return PolicyReader().Read(ReadJsonTree(text)); }

std::string_view RuleThatAsksFor(const Policy& policy, const std::function<bool(const Column& member)>& isMeant) {
  for (const PolicyRule& rule : policy.rules) {
    for (const PolicyClause& clause : rule.clauses) {
      if (AsksFor(clause.where, isMeant) || AsksFor(clause.conditions, isMeant)) return rule.name;
    }
  }
  return {};
}

void RequireKnowledge(const Policy& policy, const Inventory& inventory) {
  const std::string_view ofImages =
      RuleThatAsksFor(policy, [](const Column& member) { return member.isOfVerification; });
  if (!ofImages.empty() && !IsVerified(inventory)) {
    throw InputProblem("contains no verified images, which rule " + Quoted(ofImages) + " needs: make it with --verify");
  }
  const std::string_view ofLists =
      RuleThatAsksFor(policy, [](const Column& member) { return member.type == ValueType::Known; });
  if (!ofLists.empty() && !inventory.isLookedUp) {
    throw InputProblem("was not looked up in a list of known drivers, which rule " + Quoted(ofLists) + " needs");
  }
}

}  // namespace inventory
