#include "formats/html/htmltable.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "formats/html/htmlcolumn.h"
#include "formats/html/htmltext.h"
#include "formats/html/isotime.h"
#include "formats/html/linebreaks.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::Value;
using inventory::ValueType;

std::string ClassOf(const Cell& cell, const Column& column) {
  const std::string style = StyleOf(column);
  const std::string_view tone = NameOf(cell.tone);
  return style + (style.empty() || tone.empty() ? "" : " ") + std::string(tone);
}

/// Each text on a line of its own.
std::string Lines(const std::vector<std::string>& texts) {
  std::string lines;
  for (const std::string& text : texts) lines += (lines.empty() ? "" : "\n") + Breakable(text);
  return lines;
}

/// The time of day is an element of its own, because a narrow screen hides it.
std::string TimeHtml(const std::string& time) {
  const std::string readable = ReadableTime(time);
  return readable.substr(0, 10) + Element("span", "clock", readable.substr(10));
}

std::string ContentOf(const Value& value, const Column& column) {
  if (std::holds_alternative<bool>(value)) return "yes";
  if (const auto* const texts = std::get_if<std::vector<std::string>>(&value)) return Lines(*texts);
  const std::string text = inventory::TextOf(value);
  if (column.type == ValueType::Time && IsIsoTime(text)) return TimeHtml(text);
  return KindOf(column.type) == "text" ? Breakable(text) : HtmlText(text);
}

std::string CellHtml(const Cell& cell, const Column& column) {
  const std::string content = ContentOf(cell.value, column);
  const std::string style = Attribute("class", ClassOf(cell, column));
  if (column.isTitle) return "<th scope=\"row\"" + style + ">" + content + "</th>";
  if (content.empty()) return "<td></td>";
  // On a narrow screen, the label is before the value.
  return "<td" + Attribute("data-label", LabelOf(column)) + style + ">" + content + "</td>";
}

std::string RowHtml(const std::vector<Cell>& row, std::size_t index, const std::vector<Column>& columns) {
  std::string html = "<tr" + Attribute("id", RowId(index)) + ">";
  for (std::size_t i = 0; i < columns.size(); ++i) html += CellHtml(row[i], columns[i]);
  return html + "</tr>\n";
}

/// The width of a column in characters, with the blank space around them.
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
    head += "<th scope=\"col\"" + Attribute("class", StyleOf(column)) + ">" + HtmlText(LabelOf(column)) + "</th>";
  }
  return widths + "</colgroup>\n" + head + "</tr></thead>\n";
}

/// The width of the widest unbreakable part of a cell.
std::size_t WidestOf(const Value& value, const Column& column) {
  if (const auto* const texts = std::get_if<std::vector<std::string>>(&value)) {
    std::size_t widest = 0;
    for (const std::string& text : *texts) widest = std::max(widest, WidestPart(text));
    return widest;
  }
  const std::string text = inventory::TextOf(value);
  // A time may break between the day and the time of day.
  constexpr std::size_t day = 10;
  if (KindOf(column.type) == "time") return std::min(text.size(), day);
  return KindOf(column.type) == "text" ? WidestPart(text) : text.size();
}

/// Whether a row fits on landscape paper without a break inside a number. The script decides this again when the reader
/// shows or hides columns.
bool FitsPaper(const Table& table) {
  // In letters of the printed size, of average width; each column has a margin of one and a half.
  constexpr std::size_t lettersOfPaper = 166;
  std::size_t doubled = 0;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    std::size_t widest = WidestPart(LabelOf(column));
    for (const auto& row : table.rows) widest = std::max(widest, WidestOf(row[i].value, column));
    doubled += 2 * widest + 3;
  }
  return doubled <= 2 * lettersOfPaper;
}

/// A table too wide for usual screens scrolls, and one too wide for paper is printed as paragraphs.
std::string SizeOf(const Table& table) {
  const unsigned whole = WholeWidth(table.columns);
  std::string size = whole > 300 ? "wide widest" : whole > 190 ? "wide" : "";
  if (!FitsPaper(table)) size += size.empty() ? "paragraphs" : " paragraphs";
  return size;
}

}  // namespace

std::string TableHtml(const Table& table, const TableTexts& texts) {
  std::string html = "<table id=\"rows\"" + Attribute("class", SizeOf(table)) + ">\n" +
                     Element("caption", "", HtmlText(texts.caption)) + "\n" + HeadHtml(table.columns) + "<tbody>\n";
  for (std::size_t i = 0; i < table.rows.size(); ++i) html += RowHtml(table.rows[i], i, table.columns);
  html += "</tbody>\n</table>\n";
  if (table.rows.empty()) html += Element("p", "none", HtmlText(texts.empty)) + "\n";
  return html;
}

std::string RowId(std::size_t row) { return "r" + std::to_string(row); }

}  // namespace driverlist
