#include "formats/html/linebreaks.h"

#include <algorithm>

#include "formats/html/htmltext.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

constexpr std::size_t MostLetters = 16;

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// Decides, byte by byte from the beginning of a text, where a line may end.
class Breaks {
 public:
  bool IsBehind(char c, char next) {
    m_letters = IsLetter(c) ? m_letters + 1 : 0;
    const bool isLong = m_letters == MostLetters && IsLetter(next);
    if (isLong) m_letters = 0;
    constexpr std::string_view marks = "\\/_-&;,";
    return isLong || marks.find(c) != std::string_view::npos;
  }

 private:
  std::size_t m_letters = 0;
};

char At(std::string_view text, std::size_t index) { return index < text.size() ? text[index] : '\0'; }

}  // namespace

std::string Breakable(std::string_view utf8) {
  std::string html;
  Breaks breaks;
  std::size_t start = 0;
  for (std::size_t i = 0; i + 1 < utf8.size(); ++i) {
    if (!breaks.IsBehind(utf8[i], utf8[i + 1])) continue;
    html += HtmlText(utf8.substr(start, i + 1 - start)) + "<wbr>";
    start = i + 1;
  }
  return html + HtmlText(utf8.substr(start));
}

std::size_t WidestPart(std::string_view utf8) {
  const std::string visible = Visible(utf8);
  const std::string_view text = visible;
  Breaks breaks;
  std::size_t widest = 0;
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t next = NextCodePoint(text, i);
    const std::size_t columns = Columns(text.substr(i, next - i));
    // A line may end between any two wide characters, such as Chinese ones.
    const bool isAlone = text[i] == ' ' || columns > 1;
    width = isAlone ? columns : width + columns;
    widest = std::max(widest, width);
    if (breaks.IsBehind(text[i], At(text, next)) || isAlone) width = 0;
    i = next;
  }
  return widest;
}

}  // namespace driverlist
