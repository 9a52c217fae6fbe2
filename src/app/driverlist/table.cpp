#include "table.h"

#include <algorithm>
#include <numeric>

#include "unicode.h"

namespace driverlist {
namespace {

constexpr std::size_t Gap = 2;

std::size_t LineWidth(const std::vector<std::size_t>& widths) {
  return std::accumulate(widths.begin(), widths.end(), Gap * (widths.size() - 1));
}

/// Takes characters off the widest that stands above its floor until a line fits or none does.
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

const char* Switch(Colour colour) {
  switch (colour) {
    case Colour::Green:
      return "\x1B[32m";
    case Colour::Yellow:
      return "\x1B[33m";
    case Colour::Red:
      return "\x1B[31m";
    case Colour::None:
      break;
  }
  return "";
}

constexpr char Bold[] = "\x1B[1m";
constexpr char Plain[] = "\x1B[0m";

/// What stands before the text of a cell to show it as it is meant.
std::string Emphasis(const Cell& cell, bool isTitle) { return isTitle ? Bold : Switch(cell.colour); }

/// Where the first `columns` code points of `utf8` end.
std::size_t EndOf(const std::string& utf8, std::size_t columns) {
  std::size_t end = 0;
  while (end < utf8.size() && columns-- > 0) end = NextCodePoint(utf8, end);
  return end;
}

}  // namespace

std::vector<std::string> Wrapped(const std::string& text, std::size_t columns) {
  std::vector<std::string> pieces;
  std::string left = text;
  while (Columns(left) > columns) {
    std::size_t end = EndOf(left, columns);
    std::size_t next = end;
    const std::size_t blank = left.rfind(' ', end);
    if (blank != std::string::npos && blank > 0) {
      end = blank;
      next = blank + 1;
    }
    pieces.push_back(left.substr(0, end));
    left.erase(0, next);
  }
  pieces.push_back(left);
  return pieces;
}

std::string FormatRows(const std::vector<TableColumn>& columns, const std::vector<std::vector<Cell>>& rows,
                       const Page& page) {
  if (columns.empty()) return std::string();
  std::vector<std::vector<Cell>> lines(1);
  for (const TableColumn& column : columns) lines[0].push_back({column.title});
  lines.insert(lines.end(), rows.begin(), rows.end());

  std::vector<std::size_t> widths(columns.size(), 1);
  std::vector<std::size_t> floors;
  for (auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      line[i].text = Printable(line[i].text);
      widths[i] = std::max(widths[i], Columns(line[i].text));
    }
  }
  for (const TableColumn& column : columns) floors.push_back(std::max<std::size_t>(column.floor, 1));
  if (page.width > 0) {
    FitDownTo(floors, widths, page.width);
    FitDownTo(std::vector<std::size_t>(columns.size(), 1), widths, page.width);
  }

  std::string table;
  for (const auto& line : lines) {
    // Columns may be more than fit even with one character each: the line ends where the page does.
    std::size_t left = page.width > 0 ? page.width : LineWidth(widths);
    std::string text;
    std::size_t blanks = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
      const std::size_t room = std::min(widths[i], left);
      const std::string shown = columns[i].keepsEnd ? CutFront(line[i].text, room) : Cut(line[i].text, room);
      const std::string emphasis = page.colours ? Emphasis(line[i], &line == &lines.front()) : std::string();
      if (!shown.empty()) {
        text += std::string(blanks, ' ') + emphasis + shown + (emphasis.empty() ? "" : Plain);
        blanks = 0;
      }
      blanks += room - Columns(shown) + Gap;
      left -= std::min(left, room + Gap);
    }
    table += text + "\n";
  }
  return table;
}

}  // namespace driverlist
