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
  for (const char* const format : {"csv", "json"}) {
    EXPECT_THAT(Names(Parsed({"--format", format}).columns),
                ElementsAre("name", "description", "provider", "path", "file_version", "state", "start_type", "date",
                            "size", "product_version", "reserved1", "reserved2", "reserved_list", "found_by_device"));
  }
  EXPECT_EQ(Parsed({"--format", "csv"}).format, Format::Csv);
  EXPECT_EQ(Parsed({"--format", "json"}).format, Format::Json);
}

TEST(Options, ChooseColumnsInTheirOrder) {
  EXPECT_THAT(Names(Parsed({"--columns", "size,name,size"}).columns), ElementsAre("size", "name", "size"));
  EXPECT_THAT(Names(Parsed({"--columns", "found_by_device"}).columns), ElementsAre("found_by_device"));
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
       {"--mode", "--format", "--columns", "--output", "--log-level", "--log-file", "--version", "--help"}) {
    EXPECT_THAT(help.text, HasSubstr(option));
  }
  const ParsedCommandLine version = ParseCommandLine({"--version"});
  EXPECT_FALSE(version.options);
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.text, "driverlist " PROJECT_VERSION "\n");
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
                            {{"--format", "xml"}, "--format: \"xml\" is none of csv, json, table."},
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
