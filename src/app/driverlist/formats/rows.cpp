#include "formats/rows.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "terminal/text.h"

namespace driverlist {
namespace {

constexpr std::size_t Gap = 2;

std::size_t LineWidth(const std::vector<std::size_t>& widths) {
  return std::accumulate(widths.begin(), widths.end(), Gap * (widths.size() - 1));
}

/// Takes columns of the page off the widest that is above its floor until a line fits or there is no such column.
void FitDownTo(const std::vector<std::size_t>& floors, std::vector<std::size_t>& widths, std::size_t width) {
  for (std::size_t line = LineWidth(widths); line > width; --line) {
    std::size_t widest = widths.size();
    for (std::size_t i = 0; i < widths.size(); ++i) {
      if (widths[i] > floors[i] && (widest == widths.size() || widths[i] > widths[widest])) widest = i;
    }
    if (widest == widths.size()) return;
    --widths[widest];
  }
}

/// How wide each column is on the page.
std::vector<std::size_t> Widths(const std::vector<RowColumn>& columns, const std::vector<std::vector<TextCell>>& lines,
                                std::size_t pageWidth) {
  std::vector<std::size_t> widths(columns.size(), 1);
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], Columns(line[i].text));
  }
  if (pageWidth == 0) return widths;
  std::vector<std::size_t> floors;
  for (const RowColumn& column : columns) floors.push_back(std::max<std::size_t>(column.floor, 1));
  FitDownTo(floors, widths, pageWidth);
  FitDownTo(std::vector<std::size_t>(columns.size(), 1), widths, pageWidth);
  return widths;
}

std::string_view SwitchOn(Tone tone) {
  switch (tone) {
    case Tone::Good:
      return "\x1B[32m";
    case Tone::Doubtful:
      return "\x1B[33m";
    case Tone::Bad:
      return "\x1B[31m";
    case Tone::Plain:
      break;
  }
  return {};
}

constexpr std::string_view Bold = "\x1B[1m";
constexpr std::string_view Off = "\x1B[0m";

/// `text` between the codes that switch `emphasis` on and off.
std::string Emphasized(const std::string& text, std::string_view emphasis) {
  if (emphasis.empty()) return text;
  return std::string(emphasis).append(text).append(Off);
}

/// Appends one line of the table. The first line, that of the titles, is bold.
void AppendLine(const std::vector<RowColumn>& columns, const std::vector<std::size_t>& widths,
                const std::vector<TextCell>& line, bool isTitles, const Page& page, std::string& table) {
  // Columns may be more than fit even with one character each: the line ends where the page does.
  std::size_t left = page.width > 0 ? page.width : LineWidth(widths);
  std::size_t blanks = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const std::size_t room = std::min(widths[i], left);
    const std::string shown = columns[i].keepsEnd ? CutFront(line[i].text, room) : Cut(line[i].text, room);
    if (!shown.empty()) {
      table.append(blanks, ' ');
      blanks = 0;
      const std::string_view emphasis = isTitles ? Bold : SwitchOn(line[i].tone);
      table += page.colours ? Emphasized(shown, emphasis) : shown;
    }
    blanks += room - Columns(shown) + Gap;
    left -= std::min(left, room + Gap);
  }
  table += '\n';
}

/// Where the code points that fit into `columns` end; behind the first one at least.
std::size_t EndOf(std::string_view utf8, std::size_t columns) {
  std::size_t end = 0;
  for (std::size_t width = 0; end < utf8.size();) {
    const std::size_t next = NextCodePoint(utf8, end);
    width += Columns(utf8.substr(end, next - end));
    if (width > columns && end > 0) break;
    end = next;
  }
  return end;
}

}  // namespace

std::vector<std::string> Wrapped(const std::string& text, std::size_t columns) {
  std::vector<std::string> pieces;
  const std::string visible = Visible(text);
  std::string_view left = visible;
  for (std::size_t end = 0; (end = EndOf(left, columns)) < left.size();) {
    std::size_t next = end;
    const std::size_t blank = left.rfind(' ', end);
    if (blank != std::string_view::npos && blank > 0) {
      end = blank;
      next = blank + 1;
    }
    pieces.emplace_back(left.substr(0, end));
    left.remove_prefix(next);
  }
  pieces.emplace_back(left);
  return pieces;
}

std::string FormatRows(const std::vector<RowColumn>& columns, std::vector<std::vector<TextCell>> rows,
                       const Page& page) {
  if (columns.empty()) return std::string();
  std::vector<TextCell> titles;
  for (const RowColumn& column : columns) titles.push_back({column.title});
  rows.insert(rows.begin(), std::move(titles));
  for (auto& row : rows) {
    for (TextCell& cell : row) cell.text = Visible(cell.text);
  }
  const std::vector<std::size_t> widths = Widths(columns, rows, page.width);
  std::string table;
  for (const auto& row : rows) AppendLine(columns, widths, row, &row == &rows.front(), page, table);
  return table;
}

}  // namespace driverlist
