#include "formats/diffformats.h"

#include <optional>
#include <utility>
#include <vector>

#include "formats/diffparagraphs.h"
#include "formats/rows.h"
#include "formats/tone.h"
#include "formats/wrapped.h"

namespace driverlist {
namespace {

using inventory::Change;
using inventory::Comparison;
using inventory::Difference;
using inventory::DifferenceKind;

std::string HeadLine(const std::string& which, const inventory::Head& head, const Page& page) {
  std::string line;
  for (const std::string& part : {head.host, head.windows.empty() ? "" : "Windows " + head.windows, head.time}) {
    if (!part.empty()) line += (line.empty() ? "" : ", ") + part;
  }
  return Paragraph(which + ": " + line, page.width);
}

std::string Counts(const Comparison& comparison) {
  std::string counts;
  for (const DifferenceKind kind : inventory::DifferenceKinds) {
    const std::size_t count = comparison.GroupsOf(kind);
    if (count > 0) counts += std::to_string(count) + " " + std::string(DifferenceName(kind)) + ", ";
  }
  return counts + std::to_string(comparison.same) + " the same";
}

/// A row for each change, or one without a change for a record that was added or removed and has nothing else to show.
void AddRows(const Difference& difference, bool isFirstOfGroup, TextRows& rows) {
  const std::string indent = isFirstOfGroup ? "" : "  ";
  const inventory::Record& record = difference.Latest();
  const auto add = [&](const std::string& member, const TextCell& before, const TextCell& after) {
    rows.push_back({{indent + std::string(DifferenceName(difference.kind)), ToneOf(difference.kind), true},
                    {std::string(KindName(record.kind)), Tone::Plain, true},
                    {record.name},
                    {member, Tone::Plain, true},
                    before,
                    after});
  };
  const std::vector<Change> changes = ChangesOf(difference);
  for (const Change& change : changes) {
    const bool isWhole = change.member->isWhole;
    add(std::string(change.member->name), {inventory::TextOf(change.before), Tone::Plain, isWhole},
        {inventory::TextOf(change.after), Tone::Plain, isWhole});
  }
  if (changes.empty()) add("", {}, {});
}

std::optional<std::string> DifferencesAsTable(const Comparison& comparison, const Page& page) {
  const std::vector<RowColumn> columns = {{"difference", 12}, {"kind", 7},       {"name", 16},
                                          {"member", 12},     {"old", 16, true}, {"new", 16, true}};
  TextRows rows;
  std::size_t group = 0;
  for (const Difference& difference : comparison.differences) {
    AddRows(difference, difference.group != group, rows);
    group = difference.group;
  }
  return FormatRowsAtTheirFloors(columns, std::move(rows), page);
}

}  // namespace

std::string FormatDiffTable(const Comparison& comparison, const Page& page) {
  std::string differences;
  if (!comparison.differences.empty()) {
    const auto table = DifferencesAsTable(comparison, page);
    differences = table ? *table : DifferencesAsParagraphs(comparison, page);
  }
  return HeadLine("old", comparison.before.head, page) + HeadLine("new", comparison.after.head, page) + differences +
         Paragraph(Counts(comparison), page.width);
}

}  // namespace driverlist
