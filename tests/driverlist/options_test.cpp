#include "options.h"

#include <gmock/gmock.h>

using namespace driverlist;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::vector<std::string> Names(const std::vector<Column>& columns) {
  std::vector<std::string> names;
  for (const Column& column : columns) names.emplace_back(column.name);
  return names;
}

Options Parsed(const std::vector<std::string>& arguments) {
  const ParsedCommandLine parsed = ParseCommandLine(arguments);
  EXPECT_EQ(parsed.exitCode, 0);
  EXPECT_EQ(parsed.text, "");
  return parsed.options.value();
}

TEST(Options, ListAllDriversAsATableByDefault) {
  const Options options = Parsed({});
  EXPECT_EQ(options.command, Command::List);
  EXPECT_FALSE(options.columnsChosen);
  EXPECT_FALSE(options.quiet);
  EXPECT_FALSE(options.selection.match);
  EXPECT_THAT(options.selection.conditions, testing::IsEmpty());
  EXPECT_FALSE(options.selection.sort);
  EXPECT_EQ(options.mode, Orvane::All);
  EXPECT_EQ(options.format, Format::Table);
  EXPECT_THAT(Names(options.columns), ElementsAre("name", "file_version", "state", "start_type", "provider", "path"));
  EXPECT_EQ(options.output, "");
  EXPECT_FALSE(options.logLevel);
  EXPECT_EQ(options.logFile, "");
}

TEST(Options, ChooseTheMode) {
  EXPECT_EQ(Parsed({"--mode", "registered"}).mode, Orvane::Registered);
  EXPECT_EQ(Parsed({"--mode=by-device"}).mode, Orvane::ByDevice);
  EXPECT_EQ(Parsed({"--mode", "all"}).mode, Orvane::All);
  EXPECT_EQ(ModeName(Orvane::All), "all");
  EXPECT_EQ(ModeName(Orvane::Registered), "registered");
  EXPECT_EQ(ModeName(Orvane::ByDevice), "by-device");
}

TEST(Options, ShowEveryFieldToPrograms) {
  for (const char* const format : {"csv", "json", "jsonl", "markdown"}) {
    EXPECT_THAT(Names(Parsed({"--format", format}).columns),
                ElementsAre("name", "description", "provider", "path", "file_version", "state", "start_type", "date",
                            "size", "product_version", "reserved1", "reserved2", "reserved_list", "found_by_device"));
  }
  EXPECT_EQ(Parsed({"--format", "csv"}).format, Format::Csv);
  EXPECT_EQ(Parsed({"--format", "json"}).format, Format::Json);
  EXPECT_EQ(Parsed({"--format", "jsonl"}).format, Format::JsonLines);
  EXPECT_EQ(Parsed({"--format", "markdown"}).format, Format::Markdown);
}

TEST(Options, ShowOnAPageWhatPeopleAskFor) {
  const Options options = Parsed({"--format", "html"});
  EXPECT_EQ(options.format, Format::Html);
  EXPECT_THAT(Names(options.columns), ElementsAre("name", "description", "provider", "file_version", "state",
                                                  "start_type", "date", "size", "path"));
}

TEST(Options, ChooseColumnsInTheirOrder) {
  EXPECT_THAT(Names(Parsed({"--columns", "size,name,size"}).columns), ElementsAre("size", "name", "size"));
  EXPECT_THAT(Names(Parsed({"--columns", "found_by_device"}).columns), ElementsAre("found_by_device"));
}

TEST(Options, AreThoseOfListWithAndWithoutItsName) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--mode", "registered", "--columns", "name", "--quiet"},
        std::vector<std::string>{"list", "--mode", "registered", "--columns", "name", "--quiet"}}) {
    const Options options = Parsed(arguments);
    EXPECT_EQ(options.command, Command::List);
    EXPECT_EQ(options.mode, Orvane::Registered);
    EXPECT_THAT(Names(options.columns), ElementsAre("name"));
    EXPECT_TRUE(options.columnsChosen);
    EXPECT_TRUE(options.quiet);
  }
}

TEST(Options, SelectDrivers) {
  const Selection selection =
      Parsed({"--match", "*net*", "--where", "state=Running", "--where", "name=a=b", "--sort", "size"}).selection;
  EXPECT_EQ(selection.match, "*net*");
  ASSERT_EQ(selection.conditions.size(), 2u);
  EXPECT_EQ(selection.conditions[0].column.name, "state");
  EXPECT_EQ(selection.conditions[0].pattern, "Running");
  EXPECT_EQ(selection.conditions[1].column.name, "name");
  EXPECT_EQ(selection.conditions[1].pattern, "a=b");
  ASSERT_TRUE(selection.sort);
  EXPECT_EQ(selection.sort->name, "size");
  EXPECT_EQ(Parsed({"--where", "provider="}).selection.conditions.at(0).pattern, "");
}

TEST(Options, NameTheFileOfASnapshot) {
  const Options options = Parsed({"snapshot", "diff", "--quiet", "--log-file", "log"});
  EXPECT_EQ(options.command, Command::Snapshot);
  EXPECT_EQ(options.file, "diff") << "the name of a command is the name of a file there";
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(options.logFile, "log");
}

TEST(Options, NameBothSidesOfADifference) {
  const Options options = Parsed({"diff", "a.json", "live", "--format", "json", "--output", "out", "--log-level", "1"});
  EXPECT_EQ(options.command, Command::Diff);
  EXPECT_EQ(options.file, "a.json");
  EXPECT_EQ(options.newFile, "live");
  EXPECT_EQ(options.format, Format::Json);
  EXPECT_EQ(options.output, "out");
  EXPECT_EQ(options.logLevel, 1);
  EXPECT_EQ(Parsed({"diff", "a", "b"}).format, Format::Table);
}

TEST(Options, AskForHealth) {
  const Options options = Parsed({"health", "--format", "json", "--output", "out", "--quiet"});
  EXPECT_EQ(options.command, Command::Health);
  EXPECT_EQ(options.format, Format::Json);
  EXPECT_EQ(options.output, "out");
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(Parsed({"health"}).format, Format::Table);
}

TEST(Options, NameFiles) {
  const Options options = Parsed({"--output", "\xD0\xB6.csv", "--log-file", "log.txt", "--log-level", "2"});
  EXPECT_EQ(options.output, "\xD0\xB6.csv");
  EXPECT_EQ(options.logFile, "log.txt");
  EXPECT_EQ(options.logLevel, 2);
}

TEST(Options, MayNameFilesThatBeginWithASlash) {
  const Options options = Parsed({"--output", "/tmp/list.csv", "--log-file", "/log"});
  EXPECT_EQ(options.output, "/tmp/list.csv");
  EXPECT_EQ(options.logFile, "/log");
}

TEST(Options, PrintHelpAndVersion) {
  const ParsedCommandLine help = ParseCommandLine({"--help"});
  EXPECT_FALSE(help.options);
  EXPECT_EQ(help.exitCode, 0);
  for (const char* const option :
       {"--mode", "--format", "--columns", "--output", "--log-level", "--log-file", "--version", "--help", "--match",
        "--where", "--sort", "--quiet", "snapshot", "diff", "health"}) {
    EXPECT_THAT(help.text, HasSubstr(option));
  }
  const ParsedCommandLine version = ParseCommandLine({"--version"});
  EXPECT_FALSE(version.options);
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.text, "driverlist " PROJECT_VERSION "\n");
}

TEST(Options, PrintTheHelpOfEachCommand) {
  const std::pair<const char*, std::vector<const char*>> commands[] = {
      {"list",
       {"--mode", "--format", "--columns", "--match", "--where", "--sort", "--output", "--log-level", "--quiet"}},
      {"snapshot", {"FILE", "--log-level", "--log-file", "--quiet"}},
      {"diff", {"OLD", "NEW", "live", "--format", "--output", "--log-level", "--log-file", "--quiet", "exit code"}},
      {"health", {"--format", "--output", "--log-level", "--log-file", "--quiet", "exit code"}}};
  for (const auto& [command, words] : commands) {
    for (const char* const option : {"--help", "-h"}) {
      const ParsedCommandLine help = ParseCommandLine({command, option});
      EXPECT_FALSE(help.options);
      EXPECT_EQ(help.exitCode, 0);
      EXPECT_THAT(help.text, HasSubstr(std::string("driverlist ") + command));
      for (const char* const word : words) EXPECT_THAT(help.text, HasSubstr(word)) << command;
    }
  }
  EXPECT_THAT(ParseCommandLine({"snapshot", "--help"}).text, testing::Not(HasSubstr("--mode")));
}

struct BadUsage {
  std::vector<std::string> arguments;
  const char* sentence;
};

#define NO_FIELD(text)                                                                                              \
  "--columns: \"" text                                                                                              \
  "\" is none of name, description, provider, path, file_version, state, start_type, date, size, product_version, " \
  "reserved1, reserved2, reserved_list, found_by_device."

TEST(Options, RefuseBadUsageInOneSentence) {
  const BadUsage cases[] = {{{"--mode", "everything"}, "--mode: \"everything\" is none of all, by-device, registered."},
                            {{"--mode", "ALL"}, "--mode: \"ALL\" is none of all, by-device, registered."},
                            {{"--mode", ""}, "--mode: \"\" is none of all, by-device, registered."},
                            {{"--mode"}, "--mode takes one value, once."},
                            {{"--mode", "all", "--mode", "all"}, "--mode takes one value, once."},
                            {{"--format", "xml"}, "--format: \"xml\" is none of csv, html, json, jsonl, markdown, table."},
                            {{"--columns", "name,colour"}, NO_FIELD("colour")},
                            {{"--columns", ""}, NO_FIELD("")},
                            {{"--columns"}, "--columns takes one value, once."},
                            {{"--columns", "name", "--columns", "path"}, "--columns takes one value, once."},
                            {{"--output", ""}, "--output: the name is empty."},
                            {{"--output"}, "--output takes one value, once."},
                            {{"--log-file", ""}, "--log-file: the name is empty."},
                            {{"--log-level", "5"}, "--log-level: \"5\" is none of 0, 1, 2, 3, 4."},
                            {{"--log-level", "-1"}, "--log-level: \"-1\" is none of 0, 1, 2, 3, 4."},
                            {{"--log-level", "many"}, "--log-level: \"many\" is none of 0, 1, 2, 3, 4."},
                            {{"--match", ""}, "--match: the pattern is empty."},
                            {{"--match", "a", "--match", "b"}, "--match takes one value, once."},
                            {{"--where", "state"}, "--where: \"state\" is not of the form FIELD=VALUE."},
                            {{"--where", ""}, "--where: \"\" is not of the form FIELD=VALUE."},
                            {{"--where"}, "--where takes one value each time."},
                            {{"--where", "state=x", "--where"}, "--where takes one value each time."},
                            {{"--where", "state=x", "name=y"}, "unknown argument: name=y."},
                            {{"--sort"}, "--sort takes one value, once."},
                            {{"--sort", "name", "--sort", "size"}, "--sort takes one value, once."},
                            {{"--quiet=no"}, "--quiet takes no value."},
                            {{"list", "list"}, "unknown argument: list."},
                            {{"--mode", "all", "health"}, "unknown argument: health."},
                            {{"snapshot"}, "FILE is required."},
                            {{"snapshot", ""}, "FILE: the name is empty."},
                            {{"snapshot", "a", "b"}, "unknown argument: b."},
                            {{"snapshot", "a", "--output", "b"}, "unknown argument: --output b."},
                            {{"diff"}, "OLD is required."},
                            {{"diff", "a"}, "NEW is required."},
                            {{"diff", "a", "b", "c", "d"}, "unknown argument: c d."},
                            {{"diff", "a", "b", "--format", "csv"}, "--format: \"csv\" is none of json, table."},
                            {{"diff", "a", "b", "--output", ""}, "--output: the name is empty."},
                            {{"health", "x"}, "unknown argument: x."},
                            {{"health", "--mode", "all"}, "unknown argument: --mode all."},
                            {{"health", "--format", "html"}, "--format: \"html\" is none of json, table."},
                            {{"health", "--log-level", "5"}, "--log-level: \"5\" is none of 0, 1, 2, 3, 4."},
                            {{"health", "--version"}, "unknown argument: --version."},
                            {{"--colour"}, "unknown argument: --colour."},
                            {{"everything"}, "unknown argument: everything."}};
  for (const char* const option : {"--where", "--sort"}) {
    const std::string value = option == std::string("--where") ? "colour=x" : "colour";
    EXPECT_EQ(ParseCommandLine({option, value}).text,
              std::string(option) + std::string(NO_FIELD("colour")).substr(std::string("--columns").size()));
  }
  for (const BadUsage& c : cases) {
    const ParsedCommandLine parsed = ParseCommandLine(c.arguments);
    EXPECT_FALSE(parsed.options) << c.sentence;
    EXPECT_EQ(parsed.exitCode, 2) << c.sentence;
    EXPECT_EQ(parsed.text, c.sentence);
  }
}

}  // namespace
