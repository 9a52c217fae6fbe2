#include "formats/diffformats.h"

#include <utility>
#include <vector>

#include "formats/rows.h"
#include "inventory/json.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Change;
using inventory::Comparison;
using inventory::Difference;
using inventory::DifferenceKind;
using inventory::Json;

Tone ToneOf(DifferenceKind kind) {
  if (kind == DifferenceKind::Added || kind == DifferenceKind::Upgraded) return Tone::Good;
  return kind == DifferenceKind::Changed ? Tone::Doubtful : Tone::Bad;
}

std::string HeadLine(const std::string& which, const inventory::Head& head) {
  std::string line;
  for (const std::string& part : {head.host, head.windows.empty() ? "" : "Windows " + head.windows, head.time}) {
    if (!part.empty()) line += (line.empty() ? "" : ", ") + part;
  }
  return which + ": " + Visible(line) + "\n";
}

std::string Counts(const Comparison& comparison) {
  std::string counts;
  for (const DifferenceKind kind : inventory::DifferenceKinds) {
    const std::size_t count = comparison.GroupsOf(kind);
    if (count > 0) counts += std::to_string(count) + " " + std::string(DifferenceName(kind)) + ", ";
  }
  return counts + std::to_string(comparison.same) + " the same\n";
}

/// A row for each change; one without, for a record that came or went and has nothing else to show.
void AddRows(const Difference& difference, bool isFirstOfGroup, std::vector<std::vector<TextCell>>& rows) {
  const std::string indent = isFirstOfGroup ? "" : "  ";
  const inventory::Record& record = difference.Latest();
  const auto add = [&](const std::string& member, const std::string& before, const std::string& after) {
    rows.push_back({{indent + std::string(DifferenceName(difference.kind)), ToneOf(difference.kind)},
                    {std::string(KindName(record.kind))},
                    {record.name},
                    {member},
                    {before},
                    {after}});
  };
  const std::vector<Change> changes = ChangesOf(difference);
  for (const Change& change : changes) {
    add(std::string(change.member->name), inventory::TextOf(change.before), inventory::TextOf(change.after));
  }
  if (changes.empty()) add("", "", "");
}

Json MachineJson(const inventory::Head& head) {
  Json json = inventory::HeadJson(head);
  json.erase("schema_version");
  return json;
}

Json DifferenceJson(const Comparison& comparison, const Difference& difference) {
  Json changes = Json::array();
  for (const Change& change : ChangesOf(difference)) {
    Json json = {{"member", change.member->name}};
    inventory::AddValue(json, "old", change.before);
    inventory::AddValue(json, "new", change.after);
    changes.push_back(std::move(json));
  }
  return {{"difference", DifferenceName(difference.kind)},
          {"group", difference.group},
          {"kind", KindName(difference.Latest().kind)},
          {"key", comparison.KeyOf(difference)},
          {"name", difference.Latest().name},
          {"changes", std::move(changes)}};
}

}  // namespace

std::string FormatDiffTable(const Comparison& comparison, const Page& page) {
  std::vector<std::vector<TextCell>> rows;
  std::size_t group = 0;
  for (const Difference& difference : comparison.differences) {
    AddRows(difference, difference.group != group, rows);
    group = difference.group;
  }
  const std::string table = FormatRows(
      {{"difference", 12}, {"kind", 7}, {"name", 18}, {"member", 12}, {"old", 8, true}, {"new", 8, true}}, rows, page);
  return HeadLine("old", comparison.before.head) + HeadLine("new", comparison.after.head) +
         (rows.empty() ? "" : table) + Counts(comparison);
}

std::string FormatDiffJson(const Comparison& comparison, const inventory::Head& head) {
  Json document = inventory::HeadJson(head);
  document["old"] = MachineJson(comparison.before.head);
  document["new"] = MachineJson(comparison.after.head);
  Json summary = Json::object();
  for (const DifferenceKind kind : inventory::DifferenceKinds) {
    summary[std::string(DifferenceName(kind))] = comparison.GroupsOf(kind);
  }
  summary["same"] = comparison.same;
  document["summary"] = std::move(summary);
  Json differences = Json::array();
  for (const Difference& difference : comparison.differences) {
    differences.push_back(DifferenceJson(comparison, difference));
  }
  document["differences"] = std::move(differences);
  return inventory::JsonText(document, true) + "\n";
}

}  // namespace driverlist
