#include "inventory/nearestname.h"

#include <algorithm>

namespace inventory {
namespace {

constexpr std::size_t Far = static_cast<std::size_t>(-1);
/// Shorter parts occur in too many names.
constexpr std::size_t ShortestPart = 3;
/// Longer ones are not typing errors, and not worth the time.
constexpr std::size_t LongestName = 64;

/// How many letters must be added, removed, replaced or swapped with their neighbour to turn `a` into `b`.
std::size_t Edits(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeLast = std::move(last);
    last = row;
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[b.size()];
}

bool IsPart(std::string_view part, std::string_view whole) {
  return part.size() >= ShortestPart && whole.find(part) != std::string_view::npos;
}

/// Large for unrelated names. A name that contains the other is farther away than a typing error.
std::size_t Distance(std::string_view written, std::string_view name) {
  const std::size_t edits = Edits(written, name);
  if (edits <= std::max<std::size_t>(1, std::min(written.size(), name.size()) / 3)) return edits;
  return IsPart(written, name) || IsPart(name, written) ? edits + name.size() : Far;
}

}  // namespace

std::string_view NearestName(std::string_view name, const std::vector<std::string_view>& names) {
  std::string lower(name.substr(0, LongestName));
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  std::string_view nearest;
  std::size_t distance = Far;
  for (const std::string_view candidate : names) {
    const std::size_t its = Distance(lower, candidate);
    if (its < distance) {
      distance = its;
      nearest = candidate;
    }
  }
  return nearest;
}

}  // namespace inventory
