#include "formats/wrapped.h"

#include <string_view>

#include "terminal/text.h"

namespace driverlist {
namespace {

/// Where the code points that fit into `columns` end; at least one counts as fitting.
std::size_t EndOf(std::string_view utf8, std::size_t columns) {
  std::size_t end = 0;
  for (std::size_t width = 0; end < utf8.size();) {
    const std::size_t next = NextCodePoint(utf8, end);
    width += Columns(utf8.substr(end, next - end));
    if (width > columns && end > 0) break;
    end = next;
  }
  return end;
}

/// Where the last folder of a path ends before `end`, or `end` if that would leave a short line.
std::size_t EndOfFolders(std::string_view utf8, std::size_t end) {
  const std::size_t separator = utf8.substr(0, end).rfind('\\');
  return separator == std::string_view::npos || separator < end / 2 ? end : separator + 1;
}

}  // namespace

std::vector<std::string> Wrapped(const std::string& text, std::size_t columns) {
  std::vector<std::string> pieces;
  const std::string visible = Visible(text);
  std::string_view left = visible;
  for (std::size_t end = 0; (end = EndOf(left, columns)) < left.size();) {
    const std::size_t blank = left.rfind(' ', end);
    const bool isAtBlank = blank != std::string_view::npos && blank > 0;
    end = isAtBlank ? blank : EndOfFolders(left, end);
    pieces.emplace_back(left.substr(0, end));
    left.remove_prefix(isAtBlank ? end + 1 : end);
  }
  pieces.emplace_back(left);
  return pieces;
}

std::string Paragraph(const std::string& text, std::size_t width, std::size_t indent) {
  const std::string blanks(indent, ' ');
  if (width == 0) return blanks + Visible(text) + "\n";
  std::string lines;
  for (const std::string& line : Wrapped(text, width > indent ? width - indent : 1)) lines += blanks + line + "\n";
  return lines;
}

}  // namespace driverlist
