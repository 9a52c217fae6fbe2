#include "versioncompare.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <locale>
#include <optional>
#include <string_view>

namespace Orvane {
namespace {

/// Value of a hexadecimal digit; nullopt for any other character.
std::optional<unsigned> DigitValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
  return std::nullopt;
}

/// Value of a run of hexadecimal digits; nullopt for any other text (signs, prefixes, blanks, nothing at all) and for a
/// value of more than 63 bits.
std::optional<std::int64_t> HexValue(std::string_view component) {
  if (component.empty()) return std::nullopt;
  std::uint64_t value = 0;
  for (const char c : component) {
    const auto digit = DigitValue(c);
    if (!digit || value >> 59 != 0) return std::nullopt;
    value = value << 4 | *digit;
  }
  return static_cast<std::int64_t>(value);
}

int Sign(int comparison) { return (comparison > 0) - (comparison < 0); }

int CompareComponent(std::string_view a, std::string_view b) {
  const auto valueA = HexValue(a);
  const auto valueB = HexValue(b);
  if (valueA && valueB) return (*valueA > *valueB) - (*valueA < *valueB);
  return Sign(a.compare(b));
}

/// The components of a version, one after the other. Every version has at least one.
class Components {
 public:
  explicit Components(std::string_view version) : m_left(version) {}

  bool AreLeft() const { return m_areLeft; }
  std::string_view Next() {
    const auto end = std::find_if(m_left.begin(), m_left.end(), [](char c) { return c == '.' || c == ' '; });
    const auto size = static_cast<std::size_t>(end - m_left.begin());
    const std::string_view component = m_left.substr(0, size);
    m_areLeft = size < m_left.size();
    m_left.remove_prefix(m_areLeft ? size + 1 : size);
    return component;
  }

 private:
  std::string_view m_left;
  bool m_areLeft = true;
};

char ClassicLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// A text lower-cased with the global locale.
class LowerCase {
 public:
  explicit LowerCase(std::string_view text) : m_size(text.size()) {
    if (m_size > m_small.size()) m_large.resize(m_size);
    char* const target = m_large.empty() ? m_small.data() : m_large.data();
    const std::locale locale;
    if (locale == std::locale::classic()) {
      // Looking up its letters would take longer than the comparison.
      std::transform(text.begin(), text.end(), target, &ClassicLower);
      return;
    }
    const auto& letters = std::use_facet<std::ctype<char>>(locale);
    std::transform(text.begin(), text.end(), target, [&letters](char c) { return letters.tolower(c); });
  }

  std::string_view Text() const { return {m_large.empty() ? m_small.data() : m_large.data(), m_size}; }

 private:
  // Most versions need no allocation.
  std::array<char, 64> m_small;
  std::string m_large;
  std::size_t m_size;
};

/// Both in lower case.
int Compare(std::string_view a, std::string_view b) {
  Components componentsA(a);
  Components componentsB(b);
  while (componentsA.AreLeft() && componentsB.AreLeft()) {
    if (const int result = CompareComponent(componentsA.Next(), componentsB.Next())) return result;
  }
  return componentsA.AreLeft() - componentsB.AreLeft();
}

}  // namespace

int CompareVersion(std::string a, const std::string& b) { return Compare(a, LowerCase(b).Text()); }

int CompareVersionInLowerCase(std::string_view a, std::string_view b) {
  return Compare(LowerCase(a).Text(), LowerCase(b).Text());
}

}  // namespace Orvane
