#include "commands/helptext.h"

#include <utility>

#include "formats/rows.h"

namespace driverlist {
namespace {

constexpr std::size_t Width = 79;
/// Of the names of options.
constexpr std::size_t NamesWidth = 30;
/// The options of a command are indented once more where all commands are shown.
constexpr std::size_t Indent = 2;

std::string Lines(const std::string& text, std::size_t width) {
  std::string lines;
  for (const std::string& line : Wrapped(text, width)) lines += (lines.empty() ? "" : "\n") + line;
  return lines;
}

}  // namespace

HelpText::HelpText() {
  column_width(NamesWidth);
  label("Positionals", "Files");
}

std::string HelpText::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const {
  const std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
  return help.substr(0, help.find_last_not_of('\n') + 1) + "\n";
}

std::string HelpText::make_description(const CLI::App* app) const {
  return Lines(app->get_description(), Width - Indent) + "\n";
}

std::string HelpText::make_usage(const CLI::App* app, std::string name) const {
  if (app->get_parent() != nullptr) return "\n" + CLI::Formatter::make_usage(app, std::move(name));
  return "\nUsage: " + name + " [list] [OPTIONS]\n       " + name + " COMMAND [OPTIONS]\n";
}

std::string HelpText::make_option_opts(const CLI::Option* option) const {
  // That a file is required is in the usage; that a value has a default is no matter of its form.
  const std::string type = option->get_type_name();
  return type.empty() || option->get_type_size() == 0 ? std::string() : " " + type;
}

std::string HelpText::make_option_desc(const CLI::Option* option) const {
  const std::string byDefault = option->get_default_str();
  return Lines(option->get_description() + (byDefault.empty() ? "" : "; " + byDefault + " without it"),
               Width - NamesWidth - Indent);
}

}  // namespace driverlist
