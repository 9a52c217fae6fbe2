#include "commands/options.h"

#include <gmock/gmock.h>

#include <sstream>

#include "commands/commandtable.h"

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
  EXPECT_THAT(options.selection.sort, testing::IsEmpty());
  EXPECT_FALSE(options.selection.first);
  EXPECT_THAT(options.groupBy, testing::IsEmpty());
  EXPECT_FALSE(options.failIfNone);
  EXPECT_FALSE(options.failIfAny);
  EXPECT_EQ(options.from, "");
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
    EXPECT_THAT(
        Names(Parsed({"--format", format}).columns),
        ElementsAre("kind", "name", "description", "provider", "version", "product_version", "version_key", "service",
                    "path", "state", "start_type", "image_missing", "image_time", "size", "inf", "original_inf",
                    "inf_date", "class", "files", "devices_using", "instance_id", "hardware_id", "identity", "names",
                    "problem_code", "problem", "sha256", "image_sha256", "signature", "signature_problem",
                    "signature_kind", "catalog", "signer", "signer_thumbprint", "signed_at", "known"));
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

/// The names of the members that the conditions are about: alternatives apart by "|".
std::string Members(const inventory::Conditions& conditions) {
  std::string members;
  for (const auto& alternative : conditions) {
    if (!members.empty()) members += " |";
    for (const inventory::Condition& condition : alternative) {
      members += " " + std::string(inventory::RecordColumns().at(condition.ColumnIndex()).name);
    }
  }
  return members;
}

TEST(Options, SelectDrivers) {
  const Selection selection =
      Parsed({"--match", "net", "--where", "state=Running", "--where", "size<5", "--first", "12"}).selection;
  EXPECT_EQ(selection.match, "net");
  EXPECT_EQ(Members(selection.conditions), " state size");
  const inventory::Condition& size = selection.conditions.at(0).at(1);
  EXPECT_TRUE(size.Holds(std::uint64_t{4}, ""));
  EXPECT_FALSE(size.Holds(std::uint64_t{5}, ""));
  EXPECT_EQ(selection.first, 12u);
}

TEST(Options, SeparateAlternatives) {
  EXPECT_EQ(Members(Parsed({"--where", "name=a", "--where", "state=b", "--or", "--where", "inf=c", "--quiet", "--or",
                            "--where=kind=d", "--where", "size=1"})
                        .selection.conditions),
            " name state | inf | kind size");
}

TEST(Options, SortBySeveralMembers) {
  const std::vector<SortColumn> sort =
      Parsed({"--sort", "-size", "--sort", "name,-version", "--sort=-state"}).selection.sort;
  ASSERT_EQ(sort.size(), 4u);
  EXPECT_EQ(sort[0].column.name, "size");
  EXPECT_TRUE(sort[0].isDescending);
  EXPECT_EQ(sort[1].column.name, "name");
  EXPECT_FALSE(sort[1].isDescending);
  EXPECT_EQ(sort[2].column.name, "version");
  EXPECT_TRUE(sort[2].isDescending);
  EXPECT_EQ(sort[3].column.name, "state");
  EXPECT_TRUE(sort[3].isDescending);
}

TEST(Options, CountGroups) {
  const Options options = Parsed({"--group-by", "provider,state", "--sort", "-count,state"});
  EXPECT_THAT(Names(options.groupBy), ElementsAre("provider", "state"));
  EXPECT_EQ(options.selection.sort.at(0).column.name, "count");
  EXPECT_THAT(Names(Parsed({"--group-by", "file_version", "--mode", "all"}).groupBy), ElementsAre("file_version"));
}

TEST(Options, MakeAFailureOfWhatIsLeft) {
  EXPECT_TRUE(Parsed({"--fail-if-none"}).failIfNone);
  EXPECT_TRUE(Parsed({"--mode", "all", "--fail-if-any"}).failIfAny);
}

TEST(Options, NameASnapshotToReadFrom) {
  EXPECT_EQ(Parsed({"list", "--from", "a.json"}).from, "a.json");
  EXPECT_EQ(Parsed({"health", "--from", "a.json"}).from, "a.json");
  EXPECT_THAT(Parsed({"check", "p", "--from", "a", "--from", "b"}).fromEach, testing::ElementsAre("a", "b"));
}

TEST(Options, TakeADashForStandardOutput) { EXPECT_EQ(Parsed({"snapshot", "-"}).file, "-"); }

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

TEST(Options, AskForVerification) {
  EXPECT_FALSE(Parsed({"list"}).verify);
  EXPECT_TRUE(Parsed({"list", "--verify"}).verify);
  EXPECT_TRUE(Parsed({"snapshot", "s", "--verify"}).verify);
  EXPECT_TRUE(Parsed({"health"}).verify);
  EXPECT_FALSE(Parsed({"health", "--no-verify"}).verify);
  const Options options = Parsed({"--known", "a.json", "--known", "b.xml"});
  EXPECT_THAT(options.known, ElementsAre("a.json", "b.xml"));
  EXPECT_TRUE(options.verify) << "a list is of no use without";
}

TEST(Options, ShowWhatWasVerified) {
  EXPECT_THAT(Names(Parsed({"--verify"}).columns),
              ElementsAre("kind", "name", "version", "state", "start_type", "provider", "service", "inf", "path",
                          "signature", "signer", "known"));
  EXPECT_THAT(Names(Parsed({"--verify", "--format", "html"}).columns),
              ElementsAre("kind", "name", "description", "provider", "version", "service", "state", "start_type",
                          "image_time", "inf", "path", "signature", "signer", "known"));
}

TEST(Options, NameFiles) {
  const Options options = Parsed({"--output", "\xD0\xB6.csv", "--log-file", "log.txt", "--log-level", "2"});
  EXPECT_EQ(options.output, "\xD0\xB6.csv");
  EXPECT_EQ(options.logFile, "log.txt");
  EXPECT_EQ(options.logLevel, 2);
}

TEST(Options, NameTheDigestOfACollectionInEitherCase) {
  const Options options = Parsed({"collect", "--unless-digest", std::string(32, 'a') + std::string(32, 'F')});
  EXPECT_EQ(options.command, Command::Collect);
  EXPECT_EQ(options.knownDigest, std::string(32, 'a') + std::string(32, 'F'));
  EXPECT_EQ(Parsed({"collect"}).knownDigest, "");
}

TEST(Options, MayNameFilesThatBeginWithASlash) {
  const Options options = Parsed({"--output", "/tmp/list.csv", "--log-file", "/log"});
  EXPECT_EQ(options.output, "/tmp/list.csv");
  EXPECT_EQ(Parsed({"snapshot", "/tmp/now.json"}).file, "/tmp/now.json");
  const Options diff = Parsed({"diff", "/old", "/n"});
  EXPECT_EQ(diff.file + " " + diff.newFile, "/old /n");
  EXPECT_EQ(options.logFile, "/log");
}

TEST(Options, PrintHelpAndVersion) {
  const ParsedCommandLine help = ParseCommandLine({"--help"});
  EXPECT_FALSE(help.options);
  EXPECT_EQ(help.exitCode, 0);
  for (const char* const option :
       {"--mode",   "--kind",      "--third-party", "--host-id", "--raw",    "--bom",   "--format", "--columns",
        "--output", "--log-level", "--log-file",    "--version", "--help",   "--match", "--where",  "--sort",
        "--verify", "--known",     "--no-verify",   "--quiet",   "snapshot", "diff",    "health",   "collect"}) {
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
      {"health",
       {"--format", "--output", "--host-id", "--log-level", "--log-file", "--quiet", "Exit code", "--rule",
        "--not-rule", "--severity", "--baseline"}},
      {"baseline", {"FILE", "--rule", "--not-rule", "--severity", "--no-verify", "--known", "--from"}},
      {"check", {"POLICY", "--from", "--known", "--format", "junit", "Exit code"}},
      {"collect", {"--unless-digest", "--output", "--host-id", "--log-level", "--log-file", "--quiet"}}};
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

TEST(Options, AreExplainedForAllCommandsWithoutACommand) {
  const std::string help = ParseCommandLine({"--help"}).text;
  for (const CommandEntry& command : CommandTable()) EXPECT_THAT(help, HasSubstr(std::string(command.name)));
  EXPECT_NE(help, ParseCommandLine({"list", "--help"}).text);
  EXPECT_EQ(ParseCommandLine({"-h"}).text, help);
}

TEST(Options, AreExplainedInLinesThatFitATerminal) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--help"},
                                                    {"list", "--help"},
                                                    {"snapshot", "-h"},
                                                    {"diff", "-h"},
                                                    {"health", "-h"},
                                                    {"collect", "-h"}}) {
    std::istringstream help(ParseCommandLine(arguments).text);
    int lines = 0;
    for (std::string line; std::getline(help, line); ++lines) {
      // Examples are to be copied, so they stay in one line.
      const bool isExample = line.find_first_not_of(' ') == line.find("driverlist ");
      EXPECT_TRUE(isExample || line.size() <= 79) << line;
    }
    EXPECT_GT(lines, 10);
  }
}

struct BadUsage {
  std::vector<std::string> arguments;
  const char* sentence;
};

#define NO_MEMBER(option, name) option ": there is no member \"" name "\"; \"driverlist help members\" lists them all."
#define NEAR_MEMBER(option, name, near) option ": there is no member \"" name "\"; did you mean \"" near "\"?"
#define NO_CONDITION(text) \
  "--where: \"" text "\" is not a condition: write MEMBER=PATTERN, or !=, <, <=, > or >= instead of =."

TEST(Options, RefuseBadUsageInOneSentence) {
  const BadUsage cases[] = {
      {{"--mode", "everything"}, "--mode: \"everything\" is not one of all, by-device, registered."},
      {{"--mode", "ALL"}, "--mode: \"ALL\" is not one of all, by-device, registered."},
      {{"--mode", ""}, "--mode: \"\" is not one of all, by-device, registered."},
      {{"--mode"}, "--mode takes one value and can be given only once."},
      {{"--mode", "all", "--mode", "all"}, "--mode takes one value and can be given only once."},
      {{"--format", "xml"}, "--format: \"xml\" is not one of csv, html, json, jsonl, markdown, table."},
      {{"--columns", "name,colour"}, NO_MEMBER("--columns", "colour")},
      {{"--columns", ""}, NO_MEMBER("--columns", "")},
      {{"--columns", "name,file_version"}, NEAR_MEMBER("--columns", "file_version", "version")},
      {{"--columns", "kind", "--mode", "all"}, NO_MEMBER("--columns", "kind")},
      {{"--where", "colour=x"}, NO_MEMBER("--where", "colour")},
      {{"--where", "date=x"}, NEAR_MEMBER("--where", "date", "inf_date")},
      {{"--where", "inf=x", "--mode", "all"}, NO_MEMBER("--where", "inf")},
      {{"--sort", "colour"}, NO_MEMBER("--sort", "colour")},
      {{"--sort", ""}, NO_MEMBER("--sort", "")},
      {{"--sort", "version", "--mode", "all"}, NEAR_MEMBER("--sort", "version", "file_version")},
      {{"--columns", "name,size,name"}, "--columns: \"name\" is named twice."},
      {{"--kind", "driver"}, "--kind: \"driver\" is not one of service, device, package, chipset."},
      {{"--kind", "device,"}, "--kind: \"\" is not one of service, device, package, chipset."},
      {{"--kind", "device,device"}, "--kind: \"device\" is named twice."},
      {{"--kind", "device", "--kind", "service"}, "--kind takes one value and can be given only once."},
      {{"--kind", "device", "--mode", "all"}, "--kind cannot be used with --mode."},
      {{"--third-party", "--mode", "all"}, "--third-party cannot be used with --mode."},
      {{"--third-party=1"}, "--third-party takes no value."},
      {{"--raw"}, "--raw needs --format csv."},
      {{"--bom", "--format", "json"}, "--bom needs --format csv."},
      {{"--host-id", ""}, "--host-id: the identifier is empty."},
      {{"snapshot", "s", "--host-id"}, "--host-id takes one value and can be given only once."},
      {{"snapshot", "s", "--kind", "device"}, "unknown argument: --kind device."},
      {{"--columns"}, "--columns takes one value and can be given only once."},
      {{"--columns", "name", "--columns", "path"}, "--columns takes one value and can be given only once."},
      {{"--output", ""}, "--output: the name is empty."},
      {{"--output"}, "--output takes one value and can be given only once."},
      {{"--log-file", ""}, "--log-file: the name is empty."},
      {{"--log-level", "5"}, "--log-level: \"5\" is not one of 0, 1, 2, 3, 4."},
      {{"--log-level", "-1"}, "--log-level: \"-1\" is not one of 0, 1, 2, 3, 4."},
      {{"--log-level", "many"}, "--log-level: \"many\" is not one of 0, 1, 2, 3, 4."},
      {{"--match", ""}, "--match: the text is empty."},
      {{"--match", "a", "--match", "b"}, "--match takes one value and can be given only once."},
      {{"--where", "state"}, NO_CONDITION("state")},
      {{"--where", ""}, NO_CONDITION("")},
      {{"--where"}, "--where takes one value each time it is given."},
      {{"--where", "state=x", "--where"}, "--where takes one value each time it is given."},
      {{"--where", "state=x", "name=y"}, "unknown argument: name=y."},
      {{"--where", "name<m"},
       "--where: name is a text, which < cannot compare: use = or != with a pattern, such as name=a*."},
      {{"--or"}, "--or needs a --where on both sides."},
      {{"--where", "name=a", "--or"}, "--or needs a --where on both sides."},
      {{"--or", "--where", "name=a"}, "--or needs a --where on both sides."},
      {{"--where", "name=a", "--or", "--or", "--where", "name=b"}, "--or needs a --where on both sides."},
      {{"--or=1"}, "--or takes no value."},
      {{"--sort"}, "--sort takes one value each time it is given."},
      {{"--sort", "-"}, NO_MEMBER("--sort", "")},
      {{"--sort", "-nmae"}, NEAR_MEMBER("--sort", "nmae", "name")},
      {{"--sort", "name,"}, NO_MEMBER("--sort", "")},
      {{"--group-by", "colour"}, NO_MEMBER("--group-by", "colour")},
      {{"--group-by", "kind,kind"}, "--group-by: \"kind\" is named twice."},
      {{"--group-by", "kind", "--sort", "name"}, NO_MEMBER("--sort", "name")},
      {{"--group-by", "kind", "--columns", "name"}, "--columns cannot be used with --group-by."},
      {{"--first", "0"}, "--first: \"0\" is not a number from 1 to 999999999."},
      {{"--first", "-1"}, "--first: \"-1\" is not a number from 1 to 999999999."},
      {{"--first", "ten"}, "--first: \"ten\" is not a number from 1 to 999999999."},
      {{"--first", "1000000000"}, "--first: \"1000000000\" is not a number from 1 to 999999999."},
      {{"--fail-if-none", "--fail-if-any"}, "--fail-if-none cannot be used with --fail-if-any."},
      {{"--from", ""}, "--from: the name is empty."},
      {{"--from", "a", "--mode", "all"}, "--from cannot be used with --mode."},
      {{"--from", "a", "--host-id", "b"}, "--from cannot be used with --host-id."},
      {{"health", "--from", "a", "--host-id", "b"}, "--from cannot be used with --host-id."},
      {{"snapshot", "a", "--from", "b"}, "unknown argument: --from b."},
      {{"diff", "live", "a.json"}, "OLD: \"live\" can only be the newer side: write \"driverlist diff a.json live\"."},
      {{"diff", "live", "live"}, "OLD: \"live\" can only be the newer side: write \"driverlist diff FILE live\"."},
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
      {{"diff", "a", "b", "--format", "csv"}, "--format: \"csv\" is not one of html, json, table."},
      {{"diff", "a", "b", "--output", ""}, "--output: the name is empty."},
      {{"--verify", "--mode", "all"}, "--verify cannot be used with --mode."},
      {{"--known", "a", "--mode", "all"}, "--known cannot be used with --mode."},
      {{"--known", ""}, "--known: the name is empty."},
      {{"--where", "signature=invalid"}, "--where: \"signature\" is only known with --verify."},
      {{"health", "--known", "a", "--no-verify"}, "--known cannot be used with --no-verify."},
      {{"diff", "a", "b", "--verify"}, "unknown argument: --verify."},
      {{"collect", "x"}, "unknown argument: x."},
      {{"collect", "--unless-digest", "abc"}, "--unless-digest: \"abc\" is not a digest of 64 hexadecimal digits."},
      {{"collect", "--unless-digest", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaag"},
       "--unless-digest: \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaag\" is not a digest of 64 "
       "hexadecimal digits."},
      {{"collect", "--unless-digest"}, "--unless-digest takes one value and can be given only once."},
      {{"collect", "--format", "json"}, "unknown argument: --format json."},
      {{"health", "x"}, "unknown argument: x."},
      {{"health", "--mode", "all"}, "unknown argument: --mode all."},
      {{"health", "--format", "jsonl"}, "--format: \"jsonl\" is not one of csv, html, json, markdown, table."},
      {{"health", "--baseline", ""}, "--baseline: the name is empty."},
      {{"baseline"}, "FILE is required."},
      {{"baseline", "a", "--output", "b"}, "unknown argument: --output b."},
      {{"baseline", "a", "--from", "b", "--host-id", "c"}, "--from cannot be used with --host-id."},
      {{"check"}, "POLICY is required."},
      {{"check", "p", "--format", "html"}, "--format: \"html\" is not one of csv, json, junit, markdown, table."},
      {{"check", "p", "--from", "a", "--known", "b"}, "--from cannot be used with --known."},
      {{"health", "--log-level", "5"}, "--log-level: \"5\" is not one of 0, 1, 2, 3, 4."},
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
