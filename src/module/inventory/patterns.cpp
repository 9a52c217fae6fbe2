#include "inventory/patterns.h"

#include <algorithm>
#include <variant>

#include "platform/encoding.h"

namespace inventory {
namespace {

/// Where the next character after the one at `at` starts. What LowerCase() returns is always valid UTF-8.
std::size_t NextCharacter(std::string_view utf8, std::size_t at) {
  ++at;
  while (at < utf8.size() && (static_cast<unsigned char>(utf8[at]) & 0xC0) == 0x80) ++at;
  return at;
}

/// Both are in lower case.
bool IsLike(std::string_view text, std::string_view pattern) {
  std::size_t t = 0;
  std::size_t p = 0;
  // The last "*" matches as little as possible, and one character more each time the rest does not match.
  std::size_t behindStar = std::string_view::npos;
  std::size_t starEnd = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      behindStar = ++p;
      starEnd = t;
    } else if (p < pattern.size() && pattern[p] == '?') {
      t = NextCharacter(text, t);
      ++p;
    } else if (p < pattern.size() && pattern[p] == text[t]) {
      ++t;
      ++p;
    } else if (behindStar != std::string_view::npos) {
      starEnd = NextCharacter(text, starEnd);
      t = starEnd;
      p = behindStar;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace

bool HasWildcards(std::string_view text) { return text.find_first_of("*?") != std::string_view::npos; }

Pattern::Pattern(std::string_view pattern) : m_lower(Orvane::LowerCase(pattern)) {}

Pattern Pattern::Search(std::string_view text) {
  return Pattern(HasWildcards(text) ? std::string(text) : "*" + std::string(text) + "*");
}

bool Pattern::Matches(std::string_view text) const { return IsLike(Orvane::LowerCase(text), m_lower); }

bool Pattern::Matches(const Value& value) const {
  const auto* const texts = std::get_if<std::vector<std::string>>(&value);
  if (texts == nullptr || texts->empty()) return Matches(std::string_view(TextOf(value)));
  return std::any_of(texts->begin(), texts->end(),
                     [this](const std::string& text) { return Matches(std::string_view(text)); });
}

}  // namespace inventory
