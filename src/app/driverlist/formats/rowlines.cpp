#include "formats/rowlines.h"

#include <algorithm>

#include "formats/emphasis.h"
#include "formats/layout.h"
#include "formats/wrapped.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

/// Texts that have less room than this beside their titles go below them.
constexpr std::size_t Beside = 20;
constexpr std::size_t Indent = 2;

/// How far to the right the texts begin; 0 when they go below their titles.
std::size_t TextsBegin(const std::vector<RowColumn>& columns, std::size_t pageWidth) {
  std::size_t begin = 0;
  for (const RowColumn& column : columns) begin = std::max(begin, Columns(column.title) + ColumnGap);
  return pageWidth >= begin + Beside ? begin : 0;
}

std::string Lines(const TextCell& cell, std::size_t indent, const Page& page) {
  std::string lines;
  for (const std::string& piece : Wrapped(cell.text, page.width > indent ? page.width - indent : 1)) {
    lines += std::string(indent, ' ') + Toned(piece, cell.tone, page) + "\n";
  }
  return lines;
}

std::string TitleAndText(const std::string& title, const TextCell& cell, std::size_t begin, const Page& page) {
  if (cell.text.empty()) return Bold(title, page) + "\n";
  if (begin > 0) return Lines(cell, begin, page).replace(0, Columns(title), Bold(title, page));
  std::string lines;
  for (const std::string& piece : Wrapped(title, page.width)) lines += Bold(piece, page) + "\n";
  return lines + Lines(cell, Indent, page);
}

}  // namespace

std::string RowLines(const std::vector<RowColumn>& columns, const TextRows& rows, const Page& page) {
  const std::size_t begin = TextsBegin(columns, page.width);
  std::string text;
  for (const auto& row : rows) {
    if (!text.empty()) text += "\n";
    const bool isEmpty = std::all_of(row.begin(), row.end(), [](const TextCell& cell) { return cell.text.empty(); });
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const bool isShown = isEmpty ? i == 0 : !row[i].text.empty();
      if (isShown) text += TitleAndText(columns[i].title, row[i], begin, page);
    }
  }
  return text;
}

}  // namespace driverlist
