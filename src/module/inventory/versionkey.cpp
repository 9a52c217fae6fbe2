#include "inventory/versionkey.h"

#include <algorithm>

namespace inventory {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

bool IsHexNumber(std::string_view component) {
  if (component.empty() || !std::all_of(component.begin(), component.end(), IsHexDigit)) return false;
  const std::size_t first = component.find_first_not_of('0');
  if (first == std::string_view::npos) return true;
  const std::size_t digits = component.size() - first;
  return digits < 16 || (digits == 16 && component[first] <= '7');
}

void Append(std::string_view component, std::string& key) {
  if (component.empty()) {
    key += '!';
    return;
  }
  if (!IsHexNumber(component)) {
    key += static_cast<unsigned char>(component.front()) < '0' ? '"' : '~';
    key += component;
    key += ' ';
    return;
  }
  const std::string_view digits = component.substr(std::min(component.find_first_not_of('0'), component.size()));
  key += static_cast<char>('a' + digits.size());
  key += digits;
}

}  // namespace

std::string VersionKey(std::string_view version) {
  std::string lower(version);
  std::transform(lower.begin(), lower.end(), lower.begin(), &Lower);
  std::string key;
  for (std::size_t begin = 0;;) {
    const std::size_t end = std::min(lower.find_first_of(". ", begin), lower.size());
    Append(std::string_view(lower).substr(begin, end - begin), key);
    if (end == lower.size()) return key;
    begin = end + 1;
  }
}

}  // namespace inventory
