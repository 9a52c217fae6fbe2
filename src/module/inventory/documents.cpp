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

Json KnownListJson(const trust::KnownList& list) {
  Json json = {{"name", list.name}};
  if (!list.version.empty()) json["version"] = list.version;
  if (!list.date.empty()) json["date"] = list.date;
  json["entries"] = list.entries;
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

std::string FindingsJson(const std::vector<Finding>& findings, const Inventory& inventory) {
  Json document = HeadJson(inventory.head);
  Json& summary = document["summary"] = Json::object();
  for (const HealthRule& rule : HealthRules()) {
    summary[std::string(rule.name)] = FindingsOf(rule, findings).size();
  }
  Json list = Json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"rule", finding.rule}, {"subject", finding.subject}, {"evidence", finding.evidence}});
  }
  document["findings"] = std::move(list);
  if (inventory.isVerified) {
    Json& lists = document["known_lists"] = Json::array();
    for (const trust::KnownList& known : inventory.lists) lists.push_back(KnownListJson(known));
  }
  return DocumentText(document);
}

}  // namespace inventory
