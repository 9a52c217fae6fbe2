#include "selection.h"

#include <algorithm>
#include <utility>

#include "insertionsort.h"
#include "unicode.h"
#include "versions.h"

namespace driverlist {
namespace {

using Orvane::DriverData;

/// Both in one case.
bool IsLike(std::string_view text, std::string_view pattern) {
  std::size_t t = 0;
  std::size_t p = 0;
  // The last "*" takes as little as it can, and one character more each time that the rest does not fit.
  std::size_t behindStar = std::string_view::npos;
  std::size_t starEnd = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      behindStar = ++p;
      starEnd = t;
    } else if (p < pattern.size() && pattern[p] == '?') {
      t = NextCodePoint(text, t);
      ++p;
    } else if (p < pattern.size() && pattern[p] == text[t]) {
      ++t;
      ++p;
    } else if (behindStar != std::string_view::npos) {
      starEnd = NextCodePoint(text, starEnd);
      t = starEnd;
      p = behindStar;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

bool IsChosen(const DriverData& driver, const Selection& selection) {
  const auto holds = [&driver](const Condition& condition) {
    return MatchesPattern(ColumnText(driver, condition.column), condition.pattern);
  };
  if (!std::all_of(selection.conditions.begin(), selection.conditions.end(), holds)) return false;
  if (!selection.match) return true;
  const auto& columns = AllColumns();
  return std::any_of(columns.begin(), columns.end(), [&](const Column& column) {
    return MatchesPattern(ColumnText(driver, column), *selection.match);
  });
}

/// A text that sorts as the field does; a version sorts by IsOlder() instead.
std::string SortKey(const DriverData& driver, const Column& column) {
  const std::string text = ColumnText(driver, column);
  // A number sorts by its length first.
  if (column.name == "size") return std::string(1, static_cast<char>(text.size())) + text;
  // "MM/DD/YYYY HH:MM:SS"
  if (column.name == "date" && text.size() > 10) return text.substr(6, 4) + text.substr(0, 5) + text.substr(10);
  return text;
}

void Sort(std::vector<DriverData>& drivers, const Column& column) {
  std::vector<std::pair<std::string, DriverData>> keyed;
  for (DriverData& driver : drivers) {
    std::string key = SortKey(driver, column);
    keyed.emplace_back(std::move(key), std::move(driver));
  }
  const bool byVersion = column.name == "file_version" || column.name == "product_version";
  InsertionSort(keyed, [byVersion](const auto& a, const auto& b) {
    return byVersion ? IsOlder(a.first, b.first) : a.first < b.first;
  });
  for (std::size_t i = 0; i < drivers.size(); ++i) drivers[i] = std::move(keyed[i].second);
}

}  // namespace

bool MatchesPattern(std::string_view text, std::string_view pattern) {
  return IsLike(LowerCase(text), LowerCase(pattern));
}

std::vector<DriverData> Select(std::vector<DriverData> drivers, const Selection& selection) {
  drivers.erase(std::remove_if(drivers.begin(), drivers.end(),
                               [&selection](const DriverData& driver) { return !IsChosen(driver, selection); }),
                drivers.end());
  if (selection.sort) Sort(drivers, *selection.sort);
  return drivers;
}

}  // namespace driverlist
