#include "inventory/ignoringcase.h"

#include <algorithm>

#include "platform/encoding.h"

namespace inventory {
namespace {

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

int Lower(char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; }

}  // namespace

int CompareIgnoringCase(std::string_view a, std::string_view b) {
  const std::size_t shorter = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < shorter; ++i) {
    if (!IsAscii(a[i]) || !IsAscii(b[i])) return Orvane::LowerCase(a.substr(i)).compare(Orvane::LowerCase(b.substr(i)));
    if (Lower(a[i]) != Lower(b[i])) return Lower(a[i]) - Lower(b[i]);
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

}  // namespace inventory
