#include <algorithm>
#include <numeric>

#include "formats.h"
#include "unicode.h"

namespace driverlist {
namespace {

constexpr std::size_t Gap = 2;

/// `text` without characters that would move a terminal's cursor: C0 controls, and the two bytes of a C1 control.
std::string Printable(std::string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool c1 = byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
    if (c1) text.erase(i, 1);
    if (c1 || byte < 0x20 || byte == 0x7F) text[i] = '?';
  }
  return text;
}

std::size_t LineWidth(const std::vector<std::size_t>& widths) {
  return std::accumulate(widths.begin(), widths.end(), Gap * (widths.size() - 1));
}

/// Takes columns off the widest until a line fits or all are down to one.
void Fit(std::vector<std::size_t>& widths, std::size_t width) {
  for (std::size_t line = LineWidth(widths); line > width; --line) {
    const auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= 1) return;
    --*widest;
  }
}

}  // namespace

std::string FormatTable(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                        std::size_t width) {
  if (columns.empty()) return std::string();
  std::vector<std::vector<std::string>> rows(1);
  for (const Column& column : columns) rows[0].emplace_back(column.name);
  for (const Orvane::DriverData& driver : drivers) {
    std::vector<std::string>& row = rows.emplace_back();
    for (const Column& column : columns) row.push_back(Printable(ColumnText(driver, column)));
  }

  std::vector<std::size_t> widths(columns.size(), 1);
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Columns(row[i]));
  }
  if (width > 0) Fit(widths, width);

  std::string table;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string cell = Cut(row[i], widths[i]);
      line += cell + std::string(widths[i] - Columns(cell) + Gap, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    table += (width > 0 ? Cut(line, width) : line) + "\n";
  }
  return table;
}

}  // namespace driverlist
