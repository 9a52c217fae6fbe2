#include "versioncompare.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <optional>
#include <system_error>
#include <vector>

namespace Orvane {
namespace {

std::vector<std::string> Components(const std::string& version) {
  std::vector<std::string> components;
  boost::algorithm::split(components, version, boost::algorithm::is_any_of(". "));
  return components;
}

bool IsHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

/// Value of a run of hexadecimal digits; none for any other text (signs, prefixes, blanks, nothing at all) and for a value
/// past 63 bits.
std::optional<std::int64_t> HexValue(const std::string& component) {
  if (component.empty() || !std::all_of(component.begin(), component.end(), IsHexDigit)) return std::nullopt;
  std::int64_t value = 0;
  const char* const end = component.data() + component.size();
  if (std::from_chars(component.data(), end, value, 16).ec != std::errc()) return std::nullopt;
  return value;
}

int Sign(int comparison) { return (comparison > 0) - (comparison < 0); }

int CompareComponent(const std::string& a, const std::string& b) {
  const auto valueA = HexValue(a);
  const auto valueB = HexValue(b);
  if (valueA && valueB) return (*valueA > *valueB) - (*valueA < *valueB);
  return Sign(a.compare(b));
}

}  // namespace

int CompareVersion(std::string a, const std::string& b) {
  const std::vector<std::string> componentsA = Components(a);
  const std::vector<std::string> componentsB = Components(boost::algorithm::to_lower_copy(b));
  const std::size_t common = std::min(componentsA.size(), componentsB.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (const int result = CompareComponent(componentsA[i], componentsB[i])) return result;
  }
  return (componentsA.size() > componentsB.size()) - (componentsA.size() < componentsB.size());
}

}  // namespace Orvane
