#include "formats/html/htmltext.h"

#include "terminal/text.h"

namespace driverlist {
namespace {

std::string_view Reference(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

}  // namespace

std::string HtmlText(std::string_view utf8) {
  std::string html;
  for (const char c : Visible(utf8)) {
    const std::string_view reference = Reference(c);
    if (reference.empty()) {
      html += c;
    } else {
      html += reference;
    }
  }
  return html;
}

std::string Attribute(std::string_view name, std::string_view value) {
  return value.empty() ? std::string() : " " + std::string(name) + "=\"" + HtmlText(value) + "\"";
}

std::string Element(const std::string& tag, std::string_view cssClass, const std::string& content) {
  return "<" + tag + Attribute("class", cssClass) + ">" + content + "</" + tag + ">";
}

std::string Capitalized(std::string text) {
  if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') {
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
  }
  return text;
}

}  // namespace driverlist
