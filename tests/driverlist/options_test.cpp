#include "commands/options.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace driverlist;
using inventory::Kind;
using inventory::ListingMode;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::vector<std::string> Names(const std::vector<inventory::Column>& columns) {
  std::vector<std::string> names;
  for (const inventory::Column& column : columns) names.emplace_back(column.name);
  return names;
}

Options Parsed(const std::vector<std::string>& arguments) {
  const ParsedCommandLine parsed = ParseCommandLine(arguments);
  EXPECT_EQ(parsed.exitCode, 0);
  EXPECT_EQ(parsed.text, "");
  return parsed.options.value();
}

TEST(Options, ListTheInventoryAsATableByDefault) {
  const Options options = Parsed({});
  EXPECT_EQ(options.command, Command::List);
  EXPECT_FALSE(options.columnsChosen);
  EXPECT_FALSE(options.quiet);
  EXPECT_FALSE(options.selection.match);
  EXPECT_THAT(options.selection.conditions, testing::IsEmpty());
  EXPECT_FALSE(options.selection.sort);
  EXPECT_FALSE(options.mode);
  EXPECT_THAT(options.kinds, testing::IsEmpty());
  EXPECT_FALSE(options.thirdPartyOnly);
  EXPECT_EQ(options.format, Format::Table);
  EXPECT_FALSE(options.csv.isRaw);
  EXPECT_FALSE(options.csv.hasBom);
  EXPECT_THAT(Names(options.columns),
              ElementsAre("kind", "name", "version", "state", "start_type", "provider", "service", "inf", "path"));
  EXPECT_EQ(options.hostId, "");
  EXPECT_EQ(options.output, "");
  EXPECT_FALSE(options.logLevel);
  EXPECT_EQ(options.logFile, "");
}

TEST(Options, ChooseTheMode) {
  EXPECT_EQ(Parsed({"--mode", "registered"}).mode, ListingMode::Registered);
  EXPECT_EQ(Parsed({"--mode=by-device"}).mode, ListingMode::ByDevice);
  EXPECT_EQ(Parsed({"--mode", "all"}).mode, ListingMode::All);
}

TEST(Options, ChooseKinds) {
  EXPECT_THAT(Parsed({"--kind", "package,service"}).kinds, ElementsAre(Kind::Package, Kind::Service));
  EXPECT_THAT(Parsed({"--kind=chipset"}).kinds, ElementsAre(Kind::Chipset));
  EXPECT_THAT(Parsed({"--kind=device"}).kinds, ElementsAre(Kind::Device));
}

TEST(Options, LeaveOutTheMakerOfWindows) { EXPECT_TRUE(Parsed({"--third-party"}).thirdPartyOnly); }

TEST(Options, IdentifyTheMachine) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"list"}, {"snapshot", "s"}, {"diff", "a", "b"}, {"health"}}) {
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), {"--host-id", "\u0436 7"});
    EXPECT_EQ(Parsed(arguments).hostId, "\u0436 7");
  }
}

TEST(Options, ShowEveryMemberToPrograms) {
  for (const char* const format : {"csv", "json", "jsonl", "markdown"}) {
    EXPECT_THAT(Names(Parsed({"--format", format}).columns),
                ElementsAre("kind", "name", "description", "provider", "version", "product_version", "version_key",
                            "service", "path", "state", "start_type", "image_missing", "image_time", "size", "inf",
                            "original_inf", "inf_date", "class", "files", "devices_using", "instance_id", "hardware_id",
                            "identity", "names", "problem_code", "problem"));
    EXPECT_THAT(Names(Parsed({"--format", format, "--mode", "all"}).columns),
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
  EXPECT_THAT(Names(options.columns), ElementsAre("kind", "name", "description", "provider", "version", "service",
                                                  "state", "start_type", "image_time", "inf", "path"));
}

TEST(Options, ShowOfAListingWhatPeopleAskFor) {
  EXPECT_THAT(Names(Parsed({"--mode", "all"}).columns),
              ElementsAre("name", "file_version", "state", "start_type", "provider", "path"));
  EXPECT_THAT(
      Names(Parsed({"--mode", "all", "--format", "html"}).columns),
      ElementsAre("name", "description", "provider", "file_version", "state", "start_type", "date", "size", "path"));
}

TEST(Options, ChooseColumnsInTheirOrder) {
  EXPECT_THAT(Names(Parsed({"--columns", "size,name"}).columns), ElementsAre("size", "name"));
  EXPECT_THAT(Names(Parsed({"--columns", "problem_code"}).columns), ElementsAre("problem_code"));
  EXPECT_THAT(Names(Parsed({"--columns", "reserved1,found_by_device", "--mode", "all"}).columns),
              ElementsAre("reserved1", "found_by_device"));
}

TEST(Options, StyleCsv) {
  EXPECT_TRUE(Parsed({"--format", "csv", "--raw"}).csv.isRaw);
  EXPECT_FALSE(Parsed({"--format", "csv", "--raw"}).csv.hasBom);
  EXPECT_TRUE(Parsed({"--bom", "--format", "csv"}).csv.hasBom);
  EXPECT_TRUE(Parsed({"--mode", "all", "--bom", "--format", "csv"}).csv.hasBom);
}

TEST(Options, AreThoseOfListWithAndWithoutItsName) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--mode", "registered", "--columns", "name", "--quiet"},
        std::vector<std::string>{"list", "--mode", "registered", "--columns", "name", "--quiet"}}) {
    const Options options = Parsed(arguments);
    EXPECT_EQ(options.command, Command::List);
    EXPECT_EQ(options.mode, ListingMode::Registered);
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
       {"--mode",    "--kind",   "--third-party", "--host-id",  "--raw",     "--bom",  "--format",
        "--columns", "--output", "--log-level",   "--log-file", "--version", "--help", "--match",
        "--where",   "--sort",   "--quiet",       "snapshot",   "diff",      "health"}) {
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
       {"--kind", "--third-party", "--mode", "exactly as its hosts get it", "--format", "--raw", "--bom", "--columns",
        "--match", "--where", "--sort", "--output", "--host-id", "--log-level", "--quiet"}},
      {"snapshot", {"FILE", "--host-id", "--log-level", "--log-file", "--quiet"}},
      {"diff",
       {"OLD", "NEW", "live", "--format", "--output", "--host-id", "--log-level", "--log-file", "--quiet",
        "Exit code"}},
      {"health", {"--format", "--output", "--host-id", "--log-level", "--log-file", "--quiet", "Exit code"}}};
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

TEST(Options, AreExplainedInLinesThatFitATerminal) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"list", "--help"}, {"snapshot", "-h"}, {"diff", "-h"}, {"health", "-h"}}) {
    std::istringstream help(ParseCommandLine(arguments).text);
    int lines = 0;
    for (std::string line; std::getline(help, line); ++lines) EXPECT_LE(line.size(), 79u) << line;
    EXPECT_GT(lines, 10);
  }
}

struct BadUsage {
  std::vector<std::string> arguments;
  const char* sentence;
};

#define NO_COLUMN(option, text)                                                                              \
  option ": \"" text                                                                                         \
         "\" is none of kind, name, description, provider, version, product_version, version_key, service, " \
         "path, state, start_type, image_missing, image_time, size, inf, original_inf, inf_date, class, "    \
         "files, devices_using, instance_id, hardware_id, identity, names, problem_code, problem."
#define NO_FIELD(option, text)                                                                            \
  option ": \"" text                                                                                      \
         "\" is none of name, description, provider, path, file_version, state, start_type, date, size, " \
         "product_version, reserved1, reserved2, reserved_list, found_by_device."

TEST(Options, RefuseBadUsageInOneSentence) {
  const BadUsage cases[] = {
      {{"--mode", "everything"}, "--mode: \"everything\" is none of all, by-device, registered."},
      {{"--mode", "ALL"}, "--mode: \"ALL\" is none of all, by-device, registered."},
      {{"--mode", ""}, "--mode: \"\" is none of all, by-device, registered."},
      {{"--mode"}, "--mode takes one value, once."},
      {{"--mode", "all", "--mode", "all"}, "--mode takes one value, once."},
      {{"--format", "xml"}, "--format: \"xml\" is none of csv, html, json, jsonl, markdown, table."},
      {{"--columns", "name,colour"}, NO_COLUMN("--columns", "colour")},
      {{"--columns", ""}, NO_COLUMN("--columns", "")},
      {{"--columns", "name,file_version"}, NO_COLUMN("--columns", "file_version")},
      {{"--columns", "kind", "--mode", "all"}, NO_FIELD("--columns", "kind")},
      {{"--where", "colour=x"}, NO_COLUMN("--where", "colour")},
      {{"--where", "date=x"}, NO_COLUMN("--where", "date")},
      {{"--where", "inf=x", "--mode", "all"}, NO_FIELD("--where", "inf")},
      {{"--sort", "colour"}, NO_COLUMN("--sort", "colour")},
      {{"--sort", ""}, NO_COLUMN("--sort", "")},
      {{"--sort", "version", "--mode", "all"}, NO_FIELD("--sort", "version")},
      {{"--columns", "name,size,name"}, "--columns: \"name\" is named twice."},
      {{"--kind", "driver"}, "--kind: \"driver\" is none of service, device, package, chipset."},
      {{"--kind", "device,"}, "--kind: \"\" is none of service, device, package, chipset."},
      {{"--kind", "device,device"}, "--kind: \"device\" is named twice."},
      {{"--kind", "device", "--kind", "service"}, "--kind takes one value, once."},
      {{"--kind", "device", "--mode", "all"}, "--kind cannot be used with --mode."},
      {{"--third-party", "--mode", "all"}, "--third-party cannot be used with --mode."},
      {{"--third-party=1"}, "--third-party takes no value."},
      {{"--raw"}, "--raw needs --format csv."},
      {{"--bom", "--format", "json"}, "--bom needs --format csv."},
      {{"--host-id", ""}, "--host-id: the identifier is empty."},
      {{"snapshot", "s", "--host-id"}, "--host-id takes one value, once."},
      {{"snapshot", "s", "--kind", "device"}, "unknown argument: --kind device."},
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
      {{"--where", "state"}, "--where: \"state\" is not of the form COLUMN=PATTERN."},
      {{"--where", ""}, "--where: \"\" is not of the form COLUMN=PATTERN."},
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
  for (const BadUsage& c : cases) {
    const ParsedCommandLine parsed = ParseCommandLine(c.arguments);
    EXPECT_FALSE(parsed.options) << c.sentence;
    EXPECT_EQ(parsed.exitCode, 2) << c.sentence;
    EXPECT_EQ(parsed.text, c.sentence);
  }
}

}  // namespace
