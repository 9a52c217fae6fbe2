#include "formats/layout.h"

#include <algorithm>
#include <numeric>

namespace driverlist {
namespace {

/// A text cut shorter than this tells nothing any more.
constexpr std::size_t Readable = 6;

using Widths = std::vector<std::size_t>;

std::size_t LineWidth(const Widths& widths) {
  return widths.empty() ? 0 : std::accumulate(widths.begin(), widths.end(), ColumnGap * (widths.size() - 1));
}

std::size_t LeastOf(const ColumnNeeds& column, Cutting cutting) {
  const std::size_t floor = column.floor == 0 ? Readable : column.floor;
  const std::size_t least = cutting == Cutting::DownToTheFloor ? floor : std::min(floor, Readable);
  return std::max({column.whole, std::min(column.natural, least), std::size_t{1}});
}

Widths LeastOf(const std::vector<ColumnNeeds>& columns, const std::vector<std::size_t>& shown, Cutting cutting) {
  Widths least;
  for (const std::size_t column : shown) least.push_back(LeastOf(columns[column], cutting));
  return least;
}

Widths NaturalOf(const std::vector<ColumnNeeds>& columns, const std::vector<std::size_t>& shown) {
  Widths natural;
  for (const std::size_t column : shown) natural.push_back(std::max(columns[column].natural, std::size_t{1}));
  return natural;
}

enum class Leaving { EmptyOnes, All };

/// Removes the column whose turn it is to leave. False if all that are left stay.
bool LetOneLeave(const std::vector<ColumnNeeds>& columns, Leaving leaving, std::vector<std::size_t>& shown) {
  const auto turn = [&columns, leaving](std::size_t column) {
    const bool stays = columns[column].leavesAs == 0 || (leaving == Leaving::EmptyOnes && !columns[column].isEmpty);
    return stays ? ~0u : columns[column].leavesAs;
  };
  const auto next =
      std::min_element(shown.begin(), shown.end(), [&turn](std::size_t a, std::size_t b) { return turn(a) < turn(b); });
  if (next == shown.end() || turn(*next) == ~0u) return false;
  shown.erase(next);
  return true;
}

/// Narrows the widest column that is wider than its least, step by step, until a line fits.
void FitDownTo(const Widths& least, Widths& widths, std::size_t width) {
  for (std::size_t line = LineWidth(widths); line > width; --line) {
    std::size_t widest = widths.size();
    for (std::size_t i = 0; i < widths.size(); ++i) {
      if (widths[i] > least[i] && (widest == widths.size() || widths[i] > widths[widest])) widest = i;
    }
    --widths[widest];
  }
}

}  // namespace

std::optional<Layout> LayOut(const std::vector<ColumnNeeds>& columns, std::size_t width, Cutting cutting) {
  Layout layout;
  layout.shown.resize(columns.size());
  std::iota(layout.shown.begin(), layout.shown.end(), std::size_t{0});
  layout.widths = NaturalOf(columns, layout.shown);
  if (width == 0) return layout;
  while (LineWidth(layout.widths) > width && LetOneLeave(columns, Leaving::EmptyOnes, layout.shown)) {
    layout.widths = NaturalOf(columns, layout.shown);
  }
  Widths least = LeastOf(columns, layout.shown, Cutting::DownToTheFloor);
  while (LineWidth(least) > width && LetOneLeave(columns, Leaving::All, layout.shown)) {
    least = LeastOf(columns, layout.shown, Cutting::DownToTheFloor);
  }
  if (LineWidth(least) > width) {
    least = LeastOf(columns, layout.shown, cutting);
    if (LineWidth(least) > width) return std::nullopt;
  }
  layout.widths = NaturalOf(columns, layout.shown);
  FitDownTo(least, layout.widths, width);
  return layout;
}

}  // namespace driverlist
