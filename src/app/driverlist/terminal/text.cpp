#include "terminal/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

#include "terminal/characterwidth.h"

namespace driverlist {
namespace {

constexpr char Ellipsis[] = "\u2026";
constexpr char32_t Replacement = 0xFFFD;

struct CodePoint {
  char32_t value;
  /// Bytes, at least 1.
  std::size_t length;
};

struct Form {
  unsigned char mask;
  unsigned char lead;
  /// The smallest value that may be written with that many bytes.
  char32_t smallest;
};

// Of 1, 2, 3 and 4 bytes.
constexpr std::array<Form, 4> Forms = {
    {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};

bool IsScalar(char32_t value) { return value < 0xD800 || (value > 0xDFFF && value <= 0x10FFFF); }

/// The first character of `utf8`, which is not empty.
CodePoint FirstOf(std::string_view utf8) {
  const auto byte = [utf8](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  for (std::size_t i = 0; i < Forms.size(); ++i) {
    const Form& form = Forms[i];
    if ((byte(0) & form.mask) != form.lead) continue;
    if (utf8.size() <= i) break;
    char32_t value = byte(0) & static_cast<unsigned char>(~form.mask);
    for (std::size_t k = 1; k <= i; ++k) {
      if ((byte(k) & 0xC0) != 0x80) return {Replacement, 1};
      value = value << 6 | (byte(k) & 0x3F);
    }
    if (value < form.smallest || !IsScalar(value)) break;
    return {value, i + 1};
  }
  return {Replacement, 1};
}

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range Unseen[] = {{0x0000, 0x001F}, {0x007F, 0x009F}, {0x00AD, 0x00AD},  {0x061C, 0x061C}, {0x180E, 0x180E},
                            {0x200B, 0x200B}, {0x200E, 0x200F}, {0x2028, 0x202E},  {0x2060, 0x206F}, {0xFEFF, 0xFEFF},
                            {0xFFF9, 0xFFFB}, {0xFFFE, 0xFFFF}, {0xE0000, 0xE0FFF}};

std::string Code(char32_t c) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "[U+%04X]", static_cast<unsigned>(c));
  return text.data();
}

bool IsPlain(char c) { return c >= 0x20 && c < 0x7F; }

}  // namespace

bool IsUnseen(char32_t c) {
  return std::any_of(std::begin(Unseen), std::end(Unseen),
                     [c](const Range& range) { return c >= range.first && c <= range.last; });
}

std::string Visible(std::string_view utf8) {
  if (std::all_of(utf8.begin(), utf8.end(), &IsPlain)) return std::string(utf8);
  std::string visible;
  while (!utf8.empty()) {
    const CodePoint c = FirstOf(utf8);
    if (IsUnseen(c.value)) {
      visible += Code(c.value);
    } else if (c.value == Replacement) {
      visible += "\uFFFD";
    } else {
      visible += utf8.substr(0, c.length);
    }
    utf8.remove_prefix(c.length);
  }
  return visible;
}

std::size_t Columns(std::string_view utf8) {
  std::size_t columns = 0;
  while (!utf8.empty()) {
    const CodePoint c = FirstOf(utf8);
    columns += ColumnsOf(c.value);
    utf8.remove_prefix(c.length);
  }
  return columns;
}

std::size_t NextCodePoint(std::string_view utf8, std::size_t at) { return at + FirstOf(utf8.substr(at)).length; }

std::string Cut(std::string_view utf8, std::size_t columns) {
  if (columns == 0) return std::string();
  if (Columns(utf8) <= columns) return std::string(utf8);
  std::size_t bytes = 0;
  // One column is for the ellipsis.
  for (std::size_t left = columns - 1;;) {
    const CodePoint c = FirstOf(utf8.substr(bytes));
    if (ColumnsOf(c.value) > left) break;
    left -= ColumnsOf(c.value);
    bytes += c.length;
  }
  return std::string(utf8.substr(0, bytes)) + Ellipsis;
}

std::string CutFront(std::string_view utf8, std::size_t columns) {
  if (columns == 0) return std::string();
  std::size_t left = Columns(utf8);
  if (left <= columns) return std::string(utf8);
  while (!utf8.empty()) {
    const CodePoint c = FirstOf(utf8);
    // Marks go with the character that they belong to.
    if (left < columns && ColumnsOf(c.value) > 0) break;
    left -= ColumnsOf(c.value);
    utf8.remove_prefix(c.length);
  }
  return Ellipsis + std::string(utf8);
}

}  // namespace driverlist
