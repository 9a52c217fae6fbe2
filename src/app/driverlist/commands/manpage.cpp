#include "commands/manpage.h"

#include "commands/optiontable.h"
#include "inventory/head.h"
#include "inventory/memberdescriptions.h"

namespace driverlist {
namespace {

/// `text`, escaped: a backslash and a hyphen mean something to roff, and so do a dot and an apostrophe at the beginning
/// of a line.
std::string Escaped(std::string_view text) {
  std::string escaped;
  if (!text.empty() && (text.front() == '.' || text.front() == '\'')) escaped = "\\&";
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string Bold(std::string_view text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(std::string_view text) { return "\\fI" + Escaped(text) + "\\fR"; }
std::string Section(const std::string& title) { return ".SH " + title + "\n"; }

/// A term with its explanation. Both are roff.
std::string Term(const std::string& term, const std::string& explanation) {
  return ".TP\n" + term + "\n" + explanation + "\n";
}

std::string OptionText(const OptionEntry& option) {
  const std::string type = option.type.empty() ? "" : " " + Italic(option.type);
  const std::string byDefault = option.byDefault.empty() ? "" : " (default: " + option.byDefault + ")";
  return Term((option.isArgument ? Italic(option.names) : Bold(option.names)) + type,
              Escaped(option.description + byDefault + "."));
}

std::string ExamplesText(const CommandEntry& command) {
  std::string text = ".PP\nExamples:\n";
  for (const Example& example : command.examples) {
    text += ".PP\n" + Escaped(example.meaning) + ":\n.PP\n.RS\n.nf\ndriverlist " + Escaped(example.arguments) +
            "\n.fi\n.RE\n";
  }
  return text;
}

std::string Synopsis(const CommandOptions& command) {
  const bool isDefault = command.command->command == Command::List;
  std::string line = ".B driverlist\n" + (isDefault ? "[" + Bold("list") + "]" : Bold(command.command->name));
  line += " [" + Italic("OPTIONS") + "]";
  for (const OptionEntry& option : command.options) {
    if (!option.isArgument) continue;
    line += " " + (option.isRequired ? Italic(option.name) : "[" + Italic(option.name) + "]");
  }
  return line + "\n.br\n";
}

std::string MembersText() {
  std::string text = Section("MEMBERS");
  for (const inventory::MemberDescription& member : inventory::MemberDescriptions()) {
    text += Term(Bold(member.name),
                 Escaped("Of " + inventory::KindsText(member) + ": " + std::string(member.meaning) + "."));
  }
  return text;
}

}  // namespace

std::string ManPage() {
  const std::vector<CommandOptions> table = OptionTable();
  std::string page = ".\\\" Made by \"driverlist help man\".\n.TH DRIVERLIST 1 \"\" \"driverlist " +
                     inventory::ToolVersion() + "\" \"User Commands\"\n";
  page += Section("NAME") + "driverlist \\- an inventory of the device drivers of a machine\n" + Section("SYNOPSIS");
  for (const CommandOptions& command : table) page += Synopsis(command);
  page += Section("DESCRIPTION") + Escaped(ProgramDescription) + "\n" + Section("COMMANDS");
  for (const CommandOptions& command : table) {
    page +=
        ".SS driverlist " + std::string(command.command->name) + "\n" + Escaped(command.command->description) + "\n";
    for (const OptionEntry& option : command.options) page += OptionText(option);
    page += ExamplesText(*command.command);
  }
  page += MembersText();
  page += Section("EXIT STATUS") +
          "0 means success, 2 means that the command line is wrong. Other trouble is 1, or 2 for commands where 1 "
          "means that something was found. One sentence on standard error says what went wrong.\n";
  page += Section("ENVIRONMENT") + Term(Bold("NO_COLOR"), "If it is set, tables on a terminal have no colours.");
  return page;
}

}  // namespace driverlist
