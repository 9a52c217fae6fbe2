#include "formats/html/htmldiff.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "formats/html/htmlcolumn.h"
#include "formats/html/htmlpage.h"
#include "formats/html/htmlsummary.h"
#include "formats/html/htmltext.h"
#include "formats/tone.h"

namespace driverlist {
namespace {

using inventory::Change;
using inventory::Column;
using inventory::Comparison;
using inventory::Difference;
using inventory::DifferenceKind;
using inventory::Record;
using inventory::ValueType;

Column ColumnOf(std::string_view name, std::string_view label, unsigned width, ValueType type = ValueType::Text) {
  Column column;
  column.name = name;
  column.label = label;
  column.type = type;
  column.width = width;
  column.isTitle = name == "name";
  return column;
}

/// The names are those of the JSON document. The last two columns are hidden until the reader asks for them.
std::vector<Column> DiffColumns() {
  return {ColumnOf("difference", "Difference", 11),
          ColumnOf("kind", "Kind", 8),
          ColumnOf("name", "Name", 24),
          ColumnOf("member", "Member", 14),
          ColumnOf("old", "Old", 26),
          ColumnOf("new", "New", 26),
          ColumnOf("key", "Key", 24),
          ColumnOf("group", "Group", 6, ValueType::Number)};
}
constexpr std::size_t ColumnsShown = 6;

/// Adds a row for each change, or a single one for a record that was added or removed without any.
void AddRows(const Comparison& comparison, const Difference& difference, Table& table) {
  const Record& record = difference.Latest();
  const auto text = [](std::string_view view) { return Cell{std::string(view)}; };
  const auto add = [&](std::string_view member, const inventory::Value& before, const inventory::Value& after) {
    table.rows.push_back({{std::string(DifferenceName(difference.kind)), ToneOf(difference.kind)},
                          text(KindName(record.kind)),
                          text(record.name),
                          text(member),
                          {before},
                          {after},
                          text(comparison.KeyOf(difference)),
                          {inventory::Value(std::uint64_t{difference.group})}});
  };
  const std::vector<Change> changes = ChangesOf(difference);
  for (const Change& change : changes) add(change.member->name, change.before, change.after);
  if (changes.empty()) add("", {}, {});
}

/// All members of the record in both inventories.
std::vector<std::array<std::string, 3>> OpeningOf(const Difference& difference) {
  std::vector<std::array<std::string, 3>> lines;
  for (const inventory::Member& member : inventory::Members()) {
    const auto textOf = [&member](const Record* record) {
      return record == nullptr ? std::string() : inventory::TextOf(ValueOf(*record, member));
    };
    std::string before = textOf(difference.before);
    std::string after = textOf(difference.after);
    if (before.empty() && after.empty()) continue;
    lines.push_back({LabelOf(member), std::move(before), std::move(after)});
  }
  return lines;
}

/// The rows grouped by their text in `column`: in the order of `first`, or the largest group first without it.
std::vector<Group> GroupsBy(const Table& table, std::size_t column, const std::vector<std::string_view>& first) {
  std::vector<Group> groups;
  for (const std::string_view label : first) groups.push_back({std::string(label)});
  for (std::size_t row = 0; row < table.rows.size(); ++row) {
    const std::string text = inventory::TextOf(table.rows[row][column].value);
    if (text.empty()) continue;
    auto group = std::find_if(groups.begin(), groups.end(), [&text](const Group& of) { return of.label == text; });
    if (group == groups.end()) group = groups.insert(groups.end(), {text});
    group->records.push_back(row);
  }
  groups.erase(std::remove_if(groups.begin(), groups.end(), [](const Group& group) { return group.Count() == 0; }),
               groups.end());
  const auto hasMore = [](const Group& a, const Group& b) { return a.Count() > b.Count(); };
  if (first.empty()) std::stable_sort(groups.begin(), groups.end(), hasMore);
  return groups;
}

std::vector<std::string_view> DifferenceNames() {
  std::vector<std::string_view> names;
  for (const DifferenceKind kind : inventory::DifferenceKinds) names.push_back(DifferenceName(kind));
  return names;
}

std::string MachineHtml(const inventory::Head& head) {
  std::string html = HtmlText(head.host);
  if (!head.windows.empty()) html += (html.empty() ? "" : ", ") + HtmlText("Windows " + head.windows);
  if (!head.time.empty()) html += (html.empty() ? "" : ", ") + TimeHtml(head.time);
  return html;
}

std::string Figures(const Comparison& comparison) {
  std::string figures;
  for (const DifferenceKind kind : inventory::DifferenceKinds) {
    figures += FigureHtml(Capitalized(std::string(DifferenceName(kind))), comparison.GroupsOf(kind), "");
  }
  return figures + FigureHtml("The same", comparison.same, comparison.same == 1 ? "record" : "records");
}

void AddSummary(const Comparison& comparison, PageContent& content) {
  const Table& all = content.data.all;
  content.data.facets = {{"Difference", GroupsBy(all, 0, DifferenceNames())},
                         {"Kind", GroupsBy(all, 1, {})},
                         {"Member", GroupsBy(all, 3, {})}};
  std::string charts;
  for (const Facet& facet : content.data.facets) charts += ChartHtml(facet);
  content.sections = SummaryHtml(Figures(comparison), charts);
}

}  // namespace

std::string FormatDiffHtml(const Comparison& comparison, const inventory::Head& head) {
  const inventory::Head& newer = comparison.after.head;
  PageContent content;
  content.title = "Changes on " + HostText(newer.host);
  content.facts = Fact("Old", MachineHtml(comparison.before.head)) + Fact("New", MachineHtml(newer));
  content.toolVersion = head.tool_version;
  content.note = "All times are UTC.";
  content.texts = {"All changes", "Nothing differs."};
  content.data.thing = "change";
  content.data.file = "differences.csv";
  content.data.all.columns = DiffColumns();
  for (const Difference& difference : comparison.differences) {
    AddRows(comparison, difference, content.data.all);
    content.data.openings.push_back(OpeningOf(difference));
    content.data.openingOfRow.resize(content.data.all.rows.size(), content.data.openings.size() - 1);
  }
  AddSummary(comparison, content);
  Table shown = content.data.all;
  shown.columns.resize(ColumnsShown);
  for (auto& row : shown.rows) row.resize(ColumnsShown);
  return PageHtml(shown, content);
}

}  // namespace driverlist
