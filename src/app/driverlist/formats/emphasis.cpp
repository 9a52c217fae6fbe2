#include "formats/emphasis.h"

#include <string_view>

namespace driverlist {
namespace {

std::string_view SwitchOn(Tone tone) {
  switch (tone) {
    case Tone::Good:
      return "\x1B[32m";
    case Tone::Doubtful:
      return "\x1B[33m";
    case Tone::Bad:
      return "\x1B[31m";
    case Tone::Plain:
      break;
  }
  return {};
}

/// `text` between the codes that switch `emphasis` on and off.
std::string Emphasized(const std::string& text, std::string_view emphasis, const Page& page) {
  if (!page.colours || emphasis.empty() || text.empty()) return text;
  return std::string(emphasis).append(text).append("\x1B[0m");
}

}  // namespace

std::string Toned(const std::string& text, Tone tone, const Page& page) {
  return Emphasized(text, SwitchOn(tone), page);
}

std::string Bold(const std::string& text, const Page& page) { return Emphasized(text, "\x1B[1m", page); }

}  // namespace driverlist
