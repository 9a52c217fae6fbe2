#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "commands/completion.h"
#include "commands/helpmembers.h"
#include "commands/manpage.h"
#include "commands/options.h"
#include "commands/optiontable.h"
#include "inventory/memberdescriptions.h"

using namespace driverlist;
using testing::HasSubstr;
using testing::Not;

namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string HelpOf(std::vector<std::string> arguments, std::size_t width) {
  arguments.emplace_back("--help");
  const ParsedCommandLine parsed = ParseCommandLine(arguments, width);
  EXPECT_EQ(parsed.exitCode, 0);
  return parsed.text;
}

/// Examples are to be copied, so they stay in one line.
bool IsExample(const std::string& line) {
  const std::size_t begin = line.find_first_not_of(' ');
  return begin != std::string::npos && begin > 0 && line.compare(begin, 11, "driverlist ") == 0;
}

TEST(Help, IsAsWideAsTheTerminal) {
  std::vector<std::vector<std::string>> commands = {{}};
  for (const CommandEntry& command : CommandTable()) commands.push_back({std::string(command.name)});
  for (const std::size_t width : {39u, 60u, 79u, 119u, 199u}) {
    for (const auto& command : commands) {
      std::size_t widest = 0;
      for (const std::string& line : Lines(HelpOf(command, width))) {
        if (IsExample(line)) continue;
        EXPECT_LE(line.size(), width) << line;
        widest = std::max(widest, line.size());
      }
      EXPECT_GT(widest + (command.empty() ? 15 : width), width) << "it uses the width";
    }
  }
}

TEST(Help, PutsDescriptionsBelowNamesWhereThereIsNoRoomBesideThem) {
  EXPECT_THAT(HelpOf({"health"}, 79), HasSubstr("\n  --output FILE               File to write;"));
  EXPECT_THAT(HelpOf({"health"}, 39), HasSubstr("\n  --output FILE\n      File to write;"));
}

TEST(Help, HasThreeExamplesForEachCommand) {
  const std::string all = HelpOf({}, 79);
  std::set<std::string_view> different;
  for (const CommandEntry& command : CommandTable()) {
    const std::string help = HelpOf({std::string(command.name)}, 79);
    EXPECT_THAT(help, HasSubstr("\nExamples:\n  driverlist "));
    for (const Example& example : command.examples) {
      different.insert(example.arguments);
      for (const std::string& text : {help, all}) {
        EXPECT_THAT(text, HasSubstr("  driverlist " + std::string(example.arguments) + "\n"));
      }
    }
  }
  EXPECT_EQ(different.size(), 3 * CommandTable().size());
}

TEST(OptionTable, HasEveryOptionOfEveryCommand) {
  for (const CommandOptions& command : OptionTable()) {
    const std::string help = HelpOf({std::string(command.command->name)}, 79);
    EXPECT_FALSE(command.options.empty());
    for (const OptionEntry& option : command.options) {
      EXPECT_THAT(help, HasSubstr("\n  " + (option.name == "--help" ? "-h,--help" : option.name)));
      EXPECT_NE(option.description, "") << option.name;
    }
  }
  const std::vector<OptionEntry> list = OptionTable().front().options;
  const auto format =
      std::find_if(list.begin(), list.end(), [](const OptionEntry& option) { return option.name == "--format"; });
  ASSERT_NE(format, list.end());
  EXPECT_EQ(format->type, "FORMAT");
  EXPECT_EQ(format->byDefault, "table");
  EXPECT_THAT(format->choices, testing::ElementsAre("csv", "html", "json", "jsonl", "markdown", "table"));
  EXPECT_FALSE(format->isArgument);
}

/// As roff writes it.
std::string Roff(std::string text) {
  for (std::size_t at = text.find('-'); at != std::string::npos; at = text.find('-', at + 2)) text.insert(at, "\\");
  return text;
}

TEST(ManPage, HasEveryOptionExampleAndMember) {
  const std::string page = ManPage();
  EXPECT_THAT(page, testing::StartsWith(".\\\" Made by \"driverlist help man\".\n.TH DRIVERLIST 1 "));
  for (const CommandOptions& command : OptionTable()) {
    const std::size_t begin = page.find("\n.SS driverlist " + std::string(command.command->name) + "\n");
    ASSERT_NE(begin, std::string::npos);
    const std::string section = page.substr(begin, page.find("\n.S", begin + 1) - begin);
    for (const OptionEntry& option : command.options) {
      EXPECT_THAT(section,
                  HasSubstr(".TP\n\\f" + std::string(option.isArgument ? "I" : "B") + Roff(option.names) + "\\fR"));
      EXPECT_THAT(section, HasSubstr(Roff(option.description)));
    }
    for (const Example& example : command.command->examples) {
      EXPECT_THAT(section, HasSubstr("\n.nf\ndriverlist " + Roff(std::string(example.arguments)) + "\n.fi\n"));
    }
  }
  for (const inventory::Member& member : inventory::Members()) {
    EXPECT_THAT(page, HasSubstr(".TP\n\\fB" + std::string(member.name) + "\\fR\n"));
  }
}

TEST(ManPage, HasNoRequestsButItsOwn) {
  const std::set<std::string> known = {".\\\"", ".TH", ".SH", ".SS", ".TP", ".PP",
                                       ".B",    ".br", ".nf", ".fi", ".RS", ".RE"};
  for (const std::string& line : Lines(ManPage())) {
    EXPECT_NE(line, "");
    EXPECT_NE(line.front(), '\'');
    const bool isRequest = line.front() == '.';
    EXPECT_EQ(known.count(line.substr(0, line.find(' '))), isRequest ? 1u : 0u) << line;
  }
}

/// The lines of a command's options in the completion.
std::string CompletionOf(const std::string& script, std::string_view command) {
  const std::size_t begin = script.find("\n    '" + std::string(command) + "' = @{\n");
  return begin == std::string::npos ? std::string() : script.substr(begin, script.find("\n    }\n", begin) - begin);
}

TEST(Completion, OffersEveryCommandOptionAndValue) {
  const std::string script = CompletionScript();
  for (const CommandOptions& command : OptionTable()) {
    const std::string lines = CompletionOf(script, command.command->name);
    EXPECT_NE(lines, "");
    for (const OptionEntry& option : command.options) {
      if (option.isArgument && option.choices.empty()) continue;
      const std::string name = "      '" + (option.isArgument ? std::string() : option.name) + "' = @{ TakesValue = ";
      const std::size_t begin = lines.find(name);
      ASSERT_NE(begin, std::string::npos) << option.name;
      const std::string line = lines.substr(begin, lines.find('\n', begin) - begin);
      EXPECT_THAT(line, HasSubstr(option.type.empty() ? "TakesValue = $false;" : "TakesValue = $true;"));
      for (const std::string& choice : option.choices) {
        EXPECT_THAT(line, HasSubstr("'" + choice + (option.type == "CONDITION" ? "='" : "'")));
      }
    }
  }
  EXPECT_THAT(CompletionOf(script, "list"),
              HasSubstr("'--columns' = @{ TakesValue = $true; IsList = $true; Values = @('kind', 'name', "));
  EXPECT_THAT(CompletionOf(script, "list"),
              HasSubstr("'--mode' = @{ TakesValue = $true; IsList = $false; Values = @('all', "));
  EXPECT_THAT(CompletionOf(script, "diff"),
              HasSubstr("'' = @{ TakesValue = $false; IsList = $false; Values = @('live');"));
}

TEST(Completion, ClosesWhatItOpens) {
  const std::string script = CompletionScript();
  for (const std::string& line : Lines(script)) {
    EXPECT_EQ(std::count(line.begin(), line.end(), '\'') % 2, 0) << line;
  }
  for (const auto& [open, close] : {std::pair('{', '}'), std::pair('(', ')'), std::pair('[', ']')}) {
    EXPECT_EQ(std::count(script.begin(), script.end(), open), std::count(script.begin(), script.end(), close));
  }
  EXPECT_TRUE(std::all_of(script.begin(), script.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }))
      << "PowerShell takes a file without a mark for ANSI";
}

TEST(MembersHelp, ExplainsEveryMemberInItsOrder) {
  const std::vector<std::string> lines = Lines(MembersHelp(79));
  ASSERT_GT(lines.size(), inventory::Members().size());
  EXPECT_THAT(lines.front(), testing::MatchesRegex("member +type +of +what"));
  std::vector<std::string> named;
  for (const std::string& line : lines) {
    if (line.empty()) break;
    if (line.front() != ' ' && &line != &lines.front()) named.push_back(line.substr(0, line.find(' ')));
  }
  std::vector<std::string> members;
  for (const inventory::Member& member : inventory::Members()) members.emplace_back(member.name);
  EXPECT_EQ(named, members);
}

TEST(MembersHelp, SaysTypesAndKinds) {
  const std::string help = MembersHelp(119);
  EXPECT_THAT(help, testing::ContainsRegex("\nkind +text +all +service, device, package or chipset\n"));
  EXPECT_THAT(help, testing::ContainsRegex("\nversion +version +all +version of the image"));
  EXPECT_THAT(help, testing::ContainsRegex("\nimage_time +time +service +creation time"));
  EXPECT_THAT(help, testing::ContainsRegex("\ninf_date +date +device, package +date of the package\n"));
  EXPECT_THAT(help, HasSubstr("With --mode: name, description, provider, path, file_version,"));
}

TEST(MembersHelp, FitsATerminal) {
  for (const std::size_t width : {70u, 79u, 119u}) {
    for (const std::string& line : Lines(MembersHelp(width))) EXPECT_LE(line.size(), width) << line;
  }
}

}  // namespace
