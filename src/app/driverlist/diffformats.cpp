#include "diffformats.h"

#include <algorithm>

#include "jsonvalues.h"
#include "unicode.h"

namespace driverlist {
namespace {

constexpr DifferenceKind AllKinds[] = {DifferenceKind::Added, DifferenceKind::Removed, DifferenceKind::Upgraded,
                                       DifferenceKind::Downgraded, DifferenceKind::Changed};

std::size_t CountOf(const Comparison& comparison, DifferenceKind kind) {
  return static_cast<std::size_t>(
      std::count_if(comparison.differences.begin(), comparison.differences.end(),
                    [kind](const Difference& difference) { return difference.kind == kind; }));
}

Colour ColourOf(DifferenceKind kind) {
  if (kind == DifferenceKind::Added || kind == DifferenceKind::Upgraded) return Colour::Green;
  return kind == DifferenceKind::Changed ? Colour::Yellow : Colour::Red;
}

std::string HeadLine(const char* which, const Inventory& inventory) {
  return Printable(std::string(which) + ": " + inventory.host + ", Windows " + inventory.windows + ", " +
                   inventory.time) +
         "\n";
}

std::string Counts(const Comparison& comparison) {
  std::string counts;
  for (const DifferenceKind kind : AllKinds) {
    const std::size_t count = CountOf(comparison, kind);
    if (count > 0) counts += std::to_string(count) + " " + DifferenceName(kind) + ", ";
  }
  return counts + std::to_string(comparison.same) + " the same\n";
}

Json HeadJson(const Inventory& inventory) {
  return {{"host", inventory.host},
          {"windows", inventory.windows},
          {"tool_version", inventory.tool},
          {"time", inventory.time}};
}

Json DifferenceJson(const Difference& difference) {
  Json changes = Json::array();
  for (const FieldChange& change : difference.changes) {
    changes.push_back({{"field", change.field}, {"old", change.before}, {"new", change.after}});
  }
  return {{"difference", DifferenceName(difference.kind)},
          {"found_by", FoundByName(difference.foundBy)},
          {"name", difference.name},
          {"changes", std::move(changes)}};
}

}  // namespace

std::string FormatDiffTable(const Inventory& before, const Inventory& after, const Comparison& comparison,
                            const Page& page) {
  std::vector<std::vector<Cell>> rows;
  for (const Difference& difference : comparison.differences) {
    for (const FieldChange& change : difference.changes) {
      rows.push_back({{DifferenceName(difference.kind), ColourOf(difference.kind)},
                      {FoundByName(difference.foundBy)},
                      {difference.name},
                      {change.field},
                      {change.before},
                      {change.after}});
    }
  }
  const std::string table =
      FormatRows({{"difference", 10}, {"found_by", 8}, {"name", 18}, {"field", 12}, {"old", 8, true}, {"new", 8, true}},
                 rows, page);
  return HeadLine("old", before) + HeadLine("new", after) + (rows.empty() ? "" : table) + Counts(comparison);
}

std::string FormatDiffJson(const Inventory& before, const Inventory& after, const Comparison& comparison) {
  Json summary = Json::object();
  for (const DifferenceKind kind : AllKinds) summary[DifferenceName(kind)] = CountOf(comparison, kind);
  summary["same"] = comparison.same;
  Json differences = Json::array();
  for (const Difference& difference : comparison.differences) differences.push_back(DifferenceJson(difference));
  const Json document = {{"schema_version", 1},
                         {"old", HeadJson(before)},
                         {"new", HeadJson(after)},
                         {"summary", std::move(summary)},
                         {"differences", std::move(differences)}};
  return JsonText(document, true) + "\n";
}

}  // namespace driverlist
