#include "inventory/documents.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace inventory {
namespace {

std::string DocumentText(const Json& document) { return JsonText(document, true) + "\n"; }

Json MachineJson(const Head& head) {
  Json json = HeadJson(head);
  json.erase("schema_version");
  return json;
}

Json DifferenceJson(const Comparison& comparison, const Difference& difference) {
  Json changes = Json::array();
  for (const Change& change : ChangesOf(difference)) {
    Json json = {{"member", change.member->name}};
    AddValue(json, "old", change.before);
    AddValue(json, "new", change.after);
    changes.push_back(std::move(json));
  }
  return {{"difference", DifferenceName(difference.kind)},
          {"group", difference.group},
          {"kind", KindName(difference.Latest().kind)},
          {"key", comparison.KeyOf(difference)},
          {"name", difference.Latest().name},
          {"changes", std::move(changes)}};
}

/// Member by member, since "id" is left out where there is none.
Json JsonOf(const Finding& finding) {
  Json json = {{"rule", finding.rule}, {"severity", SeverityName(finding.severity)}};
  if (!finding.id.empty()) json["id"] = finding.id;
  json["subject"] = finding.subject;
  json["evidence"] = finding.evidence;
  if (!finding.nextStep.empty()) json["next_step"] = finding.nextStep;
  return json;
}

Json KnownListJson(const trust::KnownList& list) {
  Json json = {{"name", list.name}};
  if (!list.version.empty()) json["version"] = list.version;
  if (!list.date.empty()) json["date"] = list.date;
  json["entries"] = list.entries;
  return json;
}

Json ViolationJson(const Violation& violation) {
  Json json = {{"subject", violation.subject}};
  if (!violation.kind.empty()) json["kind"] = violation.kind;
  json["evidence"] = violation.evidence;
  return json;
}

Json RuleJson(const PolicyRule& rule, const RuleResult& result) {
  Json json = {{"rule", rule.name}, {"severity", SeverityName(rule.severity)}};
  if (!rule.message.empty()) json["message"] = rule.message;
  json["result"] = RuleStateName(result.state);
  json["examined"] = result.examined;
  json["violation_count"] = result.violationCount;
  Json& violations = json["violations"] = Json::array();
  for (const Violation& violation : result.violations) violations.push_back(ViolationJson(violation));
  return json;
}

Json StatesJson(const std::vector<PolicyCheck>& checks) {
  Json json = Json::object();
  for (const RuleState state : RuleStates) {
    std::size_t count = 0;
    for (const PolicyCheck& check : checks) count += check.CountOf(state);
    json[std::string(RuleStateName(state))] = count;
  }
  return json;
}

Json CheckedMachineJson(const Policy& policy, const PolicyCheck& check) {
  Json json = MachineJson(check.head);
  json["summary"] = StatesJson({check});
  Json& rules = json["rules"] = Json::array();
  for (std::size_t i = 0; i < policy.rules.size(); ++i) rules.push_back(RuleJson(policy.rules[i], check.results[i]));
  return json;
}

}  // namespace

std::string ListJson(Json head, Json drivers) {
  head["drivers"] = std::move(drivers);
  return DocumentText(head);
}

std::string GroupsJson(Json head, Json groups) {
  head["groups"] = std::move(groups);
  return DocumentText(head);
}

std::string JsonLine(const Json& object) { return JsonText(object, false) + "\n"; }

Json RecordsJson(const Records& records) {
  Json drivers = Json::array();
  for (const Record& record : records) AddMembers(drivers.emplace_back(Json::object()), record);
  return drivers;
}

std::string InventoryJson(const Inventory& inventory) {
  return ListJson(HeadJson(inventory.head), RecordsJson(inventory.records));
}

std::string InventoryJsonLines(const Inventory& inventory) {
  const Json head = HeadJson(inventory.head);
  std::string lines;
  for (const Record& record : inventory.records) {
    Json object = head;
    AddMembers(object, record);
    lines += JsonLine(object);
  }
  return lines;
}

std::string ComparisonJson(const Comparison& comparison, const Head& head) {
  Json document = HeadJson(head);
  document["old"] = MachineJson(comparison.before.head);
  document["new"] = MachineJson(comparison.after.head);
  Json summary = Json::object();
  for (const DifferenceKind kind : DifferenceKinds) {
    summary[std::string(DifferenceName(kind))] = comparison.GroupsOf(kind);
  }
  summary["same"] = comparison.same;
  document["summary"] = std::move(summary);
  Json differences = Json::array();
  for (const Difference& difference : comparison.differences) {
    differences.push_back(DifferenceJson(comparison, difference));
  }
  document["differences"] = std::move(differences);
  return DocumentText(document);
}

std::vector<Finding> FindingsOf(const HealthRule& rule, const std::vector<Finding>& findings) {
  std::vector<Finding> found;
  std::copy_if(findings.begin(), findings.end(), std::back_inserter(found),
               [&rule](const Finding& finding) { return finding.rule == rule.name; });
  return found;
}

Json FindingsArray(const std::vector<Finding>& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings) list.push_back(JsonOf(finding));
  return list;
}

std::string FindingsJson(const std::vector<Finding>& findings, const Inventory& inventory,
                         const std::optional<Hiding>& hiding) {
  Json document = HeadJson(inventory.head);
  Json& summary = document["summary"] = Json::object();
  for (const HealthRule& rule : HealthRules()) {
    summary[std::string(rule.name)] = FindingsOf(rule, findings).size();
  }
  document["findings"] = FindingsArray(findings);
  if (hiding) {
    Json& baseline = document["baseline"] = Json::object();
    if (!hiding->baseline.time.empty()) baseline["time"] = hiding->baseline.time;
    baseline["hidden"] = hiding->hidden;
  }
  if (inventory.isVerified) {
    Json& lists = document["known_lists"] = Json::array();
    for (const trust::KnownList& known : inventory.lists) lists.push_back(KnownListJson(known));
  }
  return DocumentText(document);
}

std::string PolicyCheckJson(const Policy& policy, const std::vector<PolicyCheck>& checks, const Head& head) {
  Json document = HeadJson(head);
  Json& described = document["policy"] = Json::object();
  if (!policy.name.empty()) described["name"] = policy.name;
  if (!policy.description.empty()) described["description"] = policy.description;
  document["summary"] = StatesJson(checks);
  Json& machines = document["machines"] = Json::array();
  for (const PolicyCheck& check : checks) machines.push_back(CheckedMachineJson(policy, check));
  return DocumentText(document);
}

}  // namespace inventory
