#include "formats/rows.h"

#include <algorithm>

#include "formats/emphasis.h"
#include "formats/layout.h"
#include "formats/rowlines.h"
#include "formats/wrapped.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

std::vector<ColumnNeeds> NeedsOf(const std::vector<RowColumn>& columns, const TextRows& rows) {
  std::vector<ColumnNeeds> needs;
  for (const RowColumn& column : columns) {
    needs.push_back({std::max(Columns(column.title), std::size_t{1}), 0, column.floor, column.leavesAs, !rows.empty()});
  }
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < needs.size(); ++i) {
      const std::size_t width = Columns(row[i].text);
      needs[i].natural = std::max(needs[i].natural, width);
      needs[i].isEmpty = needs[i].isEmpty && width == 0;
      if (row[i].isWhole) needs[i].whole = std::max(needs[i].whole, width);
    }
  }
  return needs;
}

/// Appends one line of the table.
void AppendLine(const std::vector<RowColumn>& columns, const Layout& layout, const std::vector<TextCell>& line,
                bool isBold, const Page& page, std::string& table) {
  std::size_t blanks = 0;
  for (std::size_t i = 0; i < layout.shown.size(); ++i) {
    const TextCell& cell = line[layout.shown[i]];
    const std::size_t room = layout.widths[i];
    const std::string shown = columns[layout.shown[i]].keepsEnd ? CutFront(cell.text, room) : Cut(cell.text, room);
    if (!shown.empty()) {
      table.append(blanks, ' ');
      blanks = 0;
      table += isBold ? Bold(shown, page) : Toned(shown, cell.tone, page);
    }
    blanks += room - Columns(shown) + ColumnGap;
  }
  table += '\n';
}

/// Names the columns that are not shown; empty if all are shown.
std::string LeftOutText(const std::vector<RowColumn>& columns, const Layout& layout) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const bool isShown = std::find(layout.shown.begin(), layout.shown.end(), i) != layout.shown.end();
    if (!isShown) names.push_back(columns[i].title);
  }
  if (names.empty()) return std::string();
  std::string text = "There is no room for ";
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " and " : ", ";
    text += names[i];
  }
  return text + (names.size() == 1 ? "; --columns shows it." : "; --columns shows them.");
}

std::string TableText(const std::vector<RowColumn>& columns, const TextRows& rows, const Layout& layout,
                      const Page& page) {
  std::vector<TextCell> titles;
  for (const RowColumn& column : columns) titles.push_back({column.title});
  std::string table;
  AppendLine(columns, layout, titles, true, page, table);
  for (const auto& row : rows) AppendLine(columns, layout, row, false, page, table);
  const std::string leftOut = LeftOutText(columns, layout);
  return leftOut.empty() ? table : table + "\n" + Paragraph(leftOut, page.width);
}

void MakeVisible(TextRows& rows) {
  for (auto& row : rows) {
    for (TextCell& cell : row) cell.text = Visible(cell.text);
  }
}

}  // namespace

std::string FormatRows(const std::vector<RowColumn>& columns, TextRows rows, const Page& page) {
  if (columns.empty()) return std::string();
  MakeVisible(rows);
  const auto layout = LayOut(NeedsOf(columns, rows), page.width, Cutting::AsFarAsReadable);
  return layout ? TableText(columns, rows, *layout, page) : RowLines(columns, rows, page);
}

std::optional<std::string> FormatRowsAtTheirFloors(const std::vector<RowColumn>& columns, TextRows rows,
                                                   const Page& page) {
  MakeVisible(rows);
  const auto layout = LayOut(NeedsOf(columns, rows), page.width, Cutting::DownToTheFloor);
  if (!layout) return std::nullopt;
  return TableText(columns, rows, *layout, page);
}

}  // namespace driverlist
