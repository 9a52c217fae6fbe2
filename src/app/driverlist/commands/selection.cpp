#include "commands/selection.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <tuple>
#include <utility>

#include "inventory/predicates.h"
#include "inventory/versionkey.h"
#include "platform/encoding.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::ValueType;

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

/// A pattern for many texts.
class Pattern {
 public:
  explicit Pattern(std::string_view pattern) : m_lower(Orvane::LowerCase(pattern)) {}
  bool Matches(std::string_view text) const { return IsLike(Orvane::LowerCase(text), m_lower); }
  bool Matches(const Cell& cell) const { return Matches(inventory::TextOf(cell.value)); }

 private:
  std::string m_lower;
};

/// Decides row by row.
class Filter {
 public:
  Filter(const std::vector<Column>& columns, const Selection& selection) {
    if (selection.match) m_match.emplace(*selection.match);
    for (const Condition& condition : selection.conditions) {
      m_conditions.emplace_back(IndexOf(columns, condition.column.name), Pattern(condition.pattern));
    }
  }

  bool Chooses(const std::vector<Cell>& row) const {
    for (const auto& [column, pattern] : m_conditions) {
      if (!pattern.Matches(row[column])) return false;
    }
    return !m_match || std::any_of(row.begin(), row.end(), [this](const Cell& cell) { return m_match->Matches(cell); });
  }

 private:
  std::optional<Pattern> m_match;
  std::vector<std::pair<std::size_t, Pattern>> m_conditions;
};

/// What a row is ordered by: first those without a value, then by number, then by bytes.
struct SortKey {
  bool isKnown = false;
  std::uint64_t number = 0;
  std::string text;
  std::size_t row = 0;

  bool operator<(const SortKey& other) const {
    return std::tie(isKnown, number, text) < std::tie(other.isKnown, other.number, other.text);
  }
};

/// The library writes numbers as texts, too.
std::uint64_t NumberIn(const std::string& text) {
  std::uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

SortKey KeyOf(const std::string& text, ValueType type, std::size_t row) {
  switch (type) {
    case ValueType::Version:
      return {inventory::IsKnownVersion(text), 0, inventory::VersionKey(text), row};
    case ValueType::Number:
      return {!text.empty(), NumberIn(text), std::string(), row};
    default:
      return {!text.empty(), 0, text, row};
  }
}

void Sort(const Table& table, const Column& column, std::vector<std::size_t>& rows) {
  const std::size_t place = IndexOf(table.columns, column.name);
  std::vector<SortKey> keys;
  keys.reserve(rows.size());
  for (const std::size_t row : rows) {
    keys.push_back(KeyOf(inventory::TextOf(table.rows[row][place].value), column.type, row));
  }
  std::stable_sort(keys.begin(), keys.end());
  std::transform(keys.begin(), keys.end(), rows.begin(), [](const SortKey& key) { return key.row; });
}

}  // namespace

bool MatchesPattern(std::string_view text, std::string_view pattern) { return Pattern(pattern).Matches(text); }

std::vector<std::size_t> SelectedRows(const Table& table, const Selection& selection) {
  const Filter filter(table.columns, selection);
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; row < table.rows.size(); ++row) {
    if (filter.Chooses(table.rows[row])) rows.push_back(row);
  }
  if (selection.sort) Sort(table, *selection.sort, rows);
  return rows;
}

}  // namespace driverlist
