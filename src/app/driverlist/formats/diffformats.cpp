#include "formats/diffformats.h"

#include <utility>
#include <vector>

#include "formats/rows.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Change;
using inventory::Comparison;
using inventory::Difference;
using inventory::DifferenceKind;

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

}  // namespace driverlist
