#include "commands/helptext.h"

#include <algorithm>
#include <utility>

#include "commands/commandtable.h"
#include "commands/optiontable.h"
#include "formats/wrapped.h"
#include "terminal/output.h"

namespace driverlist {
namespace {

/// Lines are never made narrower than this; a narrower terminal breaks them.
constexpr std::size_t Narrowest = 30;
constexpr std::size_t NamesWidth = 30;
/// If that leaves too little room for descriptions, they go below the names.
constexpr std::size_t WidthForTwoColumns = 70;
constexpr std::size_t NamesWidthAbove = 6;
/// The options of a command are indented once more where all commands are shown.
constexpr std::size_t Indent = 2;

std::string Lines(const std::string& text, std::size_t width, const std::string& indent = "") {
  std::string lines;
  for (const std::string& line : Wrapped(text, width - indent.size())) {
    lines += (lines.empty() ? "" : "\n") + indent + line;
  }
  return lines;
}

/// `text` with each of its lines indented.
std::string Indented(const std::string& text) {
  std::string indented = text.empty() ? "" : "  ";
  for (std::size_t i = 0; i < text.size(); ++i) {
    indented += text[i];
    if (text[i] == '\n' && i + 1 < text.size()) indented += "  ";
  }
  return indented;
}

}  // namespace

std::size_t HelpWidth() {
  const std::size_t width = TerminalWidth();
  return width == 0 ? UsualHelpWidth : width;
}

HelpText::HelpText(std::size_t width)
    : m_width(std::max(width, Narrowest)), m_namesWidth(m_width < WidthForTwoColumns ? NamesWidthAbove : NamesWidth) {
  column_width(m_namesWidth);
  label("Positionals", "Arguments");
}

std::string HelpText::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const {
  const std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
  return help.substr(0, help.find_last_not_of('\n') + 1) + "\n";
}

std::string HelpText::make_expanded(const CLI::App* sub) const {
  return CLI::Formatter::make_expanded(sub) + Indented(make_footer(sub));
}

std::string HelpText::make_description(const CLI::App* app) const {
  return Lines(app->get_description(), m_width - Indent) + "\n";
}

std::string HelpText::make_usage(const CLI::App* app, std::string name) const {
  if (app->get_parent() == nullptr) {
    return "\nUsage: " + name + " [list] [OPTIONS]\n       " + name + " COMMAND [OPTIONS]\n";
  }
  std::string usage = CLI::Formatter::make_usage(app, std::move(name));
  usage.erase(usage.find_last_not_of('\n') + 1);
  return "\n" + Lines(usage, m_width) + "\n";
}

std::string HelpText::make_option_opts(const CLI::Option* option) const {
  // The usage tells that a file is required, and a default is not a matter of form.
  const std::string type = TypeOf(*option);
  return type.empty() ? std::string() : " " + type;
}

std::string HelpText::make_option_desc(const CLI::Option* option) const {
  const std::string byDefault = option->get_default_str();
  return Lines(option->get_description() + (byDefault.empty() ? "" : " (default: " + byDefault + ")"),
               m_width - m_namesWidth - Indent);
}

std::string HelpText::make_footer(const CLI::App* app) const {
  const CommandEntry* const entry = FindCommand(app->get_name());
  if (entry == nullptr) return std::string();
  std::string examples = "Examples:\n";
  for (const Example& example : entry->examples) {
    examples += "  driverlist " + std::string(example.arguments) + "\n";
    examples += Lines(std::string(example.meaning), m_width - Indent, "      ") + "\n";
  }
  return examples;
}

}  // namespace driverlist
