#include "formats/html/htmltable.h"

#include <array>
#include <numeric>
#include <string_view>

#include "formats/html/htmltext.h"
#include "formats/html/isotime.h"
#include "inventory/predicates.h"
#include "inventory/versionkey.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::Value;
using inventory::ValueType;

/// How the script sorts such values.
std::string_view KindOf(ValueType type) {
  switch (type) {
    case ValueType::Version:
      return "version";
    case ValueType::Number:
      return "number";
    case ValueType::Time:
    case ValueType::Date:
      return "time";
    case ValueType::Text:
    case ValueType::Flag:
    case ValueType::Texts:
    case ValueType::Known:
      break;
  }
  return "text";
}

std::string LabelOf(const Column& column) {
  return std::string(column.label) + (column.type == ValueType::Time ? ", UTC" : "");
}

/// How the style shows such values, besides what all cells have.
std::string StyleOf(const Column& column) {
  if (column.type == ValueType::Texts) return "texts";
  if (column.keepsEnd) return "place";
  const std::string_view kind = KindOf(column.type);
  return kind == "text" ? std::string() : std::string(kind);
}

std::string_view NameOf(Tone tone) {
  constexpr std::array<std::string_view, 4> names = {"", "good", "doubtful", "bad"};
  return names[static_cast<std::size_t>(tone)];
}

std::string ClassOf(const Cell& cell, const Column& column) {
  const std::string style = StyleOf(column);
  const std::string_view tone = NameOf(cell.tone);
  return style + (style.empty() || tone.empty() ? "" : " ") + std::string(tone);
}

/// `text` with places to break long names and paths at.
std::string Breakable(std::string_view text) {
  std::string breakable;
  for (const char c : HtmlText(text)) {
    breakable += c;
    if (c == '\\' || c == '_') breakable += "<wbr>";
  }
  return breakable;
}

/// Each text in a line of its own.
std::string Lines(const std::vector<std::string>& texts) {
  std::string lines;
  for (const std::string& text : texts) lines += (lines.empty() ? "" : "\n") + Breakable(text);
  return lines;
}

std::string ContentOf(const Value& value, const Column& column) {
  if (std::holds_alternative<bool>(value)) return "yes";
  if (const auto* const texts = std::get_if<std::vector<std::string>>(&value)) return Lines(*texts);
  const std::string text = inventory::TextOf(value);
  return Breakable(column.type == ValueType::Time && IsIsoTime(text) ? ReadableTime(text) : text);
}

/// What a cell is sorted by, where that is not its text.
std::string KeyOf(const Value& value, const Column& column) {
  if (column.type != ValueType::Version) return {};
  const std::string version = inventory::TextOf(value);
  return inventory::IsKnownVersion(version) ? inventory::VersionKey(version) : std::string();
}

std::string CellHtml(const Cell& cell, const Column& column) {
  const std::string content = ContentOf(cell.value, column);
  const std::string attributes =
      Attribute("class", ClassOf(cell, column)) + Attribute("data-key", KeyOf(cell.value, column));
  if (column.isTitle) return "<th scope=\"row\"" + attributes + ">" + content + "</th>";
  if (content.empty()) return "<td></td>";
  // On a narrow screen, the label is before the value.
  return "<td" + Attribute("data-label", LabelOf(column)) + attributes + ">" + content + "</td>";
}

std::string RowHtml(const std::vector<Cell>& row, const std::vector<Column>& columns) {
  std::string html = "<tr>";
  for (std::size_t i = 0; i < columns.size(); ++i) html += CellHtml(row[i], columns[i]);
  return html + "</tr>\n";
}

/// Characters of a column, with the blank space around them.
unsigned WidthOf(const Column& column) { return column.width + 2; }

unsigned WholeWidth(const std::vector<Column>& columns) {
  return std::accumulate(columns.begin(), columns.end(), 0u,
                         [](unsigned sum, const Column& column) { return sum + WidthOf(column); });
}

/// "12.5%".
std::string Share(unsigned width, unsigned whole) {
  const unsigned thousandths = width * 1000 / whole;
  return std::to_string(thousandths / 10) + "." + std::to_string(thousandths % 10) + "%";
}

std::string HeadHtml(const std::vector<Column>& columns) {
  const unsigned whole = WholeWidth(columns);
  std::string widths = "<colgroup>";
  std::string head = "<thead><tr>";
  for (const Column& column : columns) {
    // An attribute of the element: the policy forbids styles of single elements.
    widths += "<col width=\"" + Share(WidthOf(column), whole) + "\">";
    head += "<th scope=\"col\"" + Attribute("class", StyleOf(column)) + Attribute("data-kind", KindOf(column.type)) +
            ">" + HtmlText(LabelOf(column)) + "</th>";
  }
  return widths + "</colgroup>\n" + head + "</tr></thead>\n";
}

/// What no usual screen can hold is wider than the screen.
std::string_view SizeOf(const std::vector<Column>& columns) {
  const unsigned whole = WholeWidth(columns);
  if (whole > 300) return "wide widest";
  return whole > 190 ? "wide" : "";
}

}  // namespace

std::string TableHtml(const Table& table) {
  std::string html = "<table id=\"drivers\"" + Attribute("class", SizeOf(table.columns)) +
                     ">\n<caption>All drivers</caption>\n" + HeadHtml(table.columns) + "<tbody>\n";
  for (const std::vector<Cell>& row : table.rows) html += RowHtml(row, table.columns);
  html += "</tbody>\n</table>\n";
  if (table.rows.empty()) html += "<p class=\"none\">No driver was found.</p>\n";
  return html;
}

}  // namespace driverlist
