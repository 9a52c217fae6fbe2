#include "htmltext.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "unicode.h"

namespace driverlist {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// What would act on the page, or on the text around it, without being seen. The joiners U+200C and U+200D are not among them:
// some languages need them.
constexpr Range Unseen[] = {{0x0000, 0x001F}, {0x007F, 0x009F}, {0x00AD, 0x00AD},  {0x061C, 0x061C}, {0x180E, 0x180E},
                            {0x200B, 0x200B}, {0x200E, 0x200F}, {0x2028, 0x202E},  {0x2060, 0x206F}, {0xFEFF, 0xFEFF},
                            {0xFFF9, 0xFFFB}, {0xFFFE, 0xFFFF}, {0xE0000, 0xE0FFF}};

bool IsUnseen(char32_t c) {
  return std::any_of(std::begin(Unseen), std::end(Unseen),
                     [c](const Range& range) { return c >= range.first && c <= range.last; });
}

std::wstring Code(char32_t c) {
  char text[16];
  const int length = std::snprintf(text, sizeof(text), "[U+%04X]", static_cast<unsigned>(c));
  return std::wstring(text, text + length);
}

void Append(std::wstring& html, char32_t c, std::wstring_view units) {
  switch (c) {
    case U'&':
      html += L"&amp;";
      return;
    case U'<':
      html += L"&lt;";
      return;
    case U'>':
      html += L"&gt;";
      return;
    case U'"':
      html += L"&quot;";
      return;
    case U'\'':
      html += L"&#39;";
      return;
    default:
      html += IsUnseen(c) ? Code(c) : std::wstring(units);
  }
}

bool IsPair(std::wstring_view units) {
  return units.size() > 1 && (units[0] & 0xFC00) == 0xD800 && (units[1] & 0xFC00) == 0xDC00;
}

}  // namespace

std::string HtmlText(std::string_view utf8) {
  const std::wstring wide = WideFromUtf8(utf8);
  std::wstring html;
  html.reserve(wide.size());
  for (std::wstring_view rest = wide; !rest.empty();) {
    const std::size_t units = IsPair(rest) ? 2 : 1;
    const char32_t c =
        units == 2 ? 0x10000 + ((rest[0] & 0x3FFu) << 10) + (rest[1] & 0x3FFu) : static_cast<char32_t>(rest[0]);
    Append(html, c, rest.substr(0, units));
    rest.remove_prefix(units);
  }
  return Utf8FromWide(html);
}

}  // namespace driverlist
