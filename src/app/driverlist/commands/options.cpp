#include "commands/options.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "commands/checks.h"
#include "commands/columns.h"
#include "commands/helptext.h"
#include "inventory/head.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::Kind;
using inventory::ListingMode;

const std::map<std::string, Format> ListFormats = {{"table", Format::Table}, {"csv", Format::Csv},
                                                   {"json", Format::Json},   {"jsonl", Format::JsonLines},
                                                   {"html", Format::Html},   {"markdown", Format::Markdown}};
const std::map<std::string, Format> ReportFormats = {{"table", Format::Table}, {"json", Format::Json}};
const std::map<std::string, Command> Commands = {
    {"list", Command::List}, {"snapshot", Command::Snapshot}, {"diff", Command::Diff}, {"health", Command::Health}};

std::map<std::string, ListingMode> Modes() {
  std::map<std::string, ListingMode> modes;
  for (const ListingMode mode : {ListingMode::All, ListingMode::ByDevice, ListingMode::Registered}) {
    modes.emplace(inventory::ModeName(mode), mode);
  }
  return modes;
}

template <typename Value>
std::vector<std::string> Names(const std::map<std::string, Value>& values) {
  std::vector<std::string> names;
  for (const auto& [name, value] : values) names.push_back(name);
  return names;
}

std::vector<std::string> KindNames() {
  std::vector<std::string> names;
  for (const Kind kind : {Kind::Service, Kind::Device, Kind::Package, Kind::Chipset}) {
    names.emplace_back(inventory::KindName(kind));
  }
  return names;
}

/// The options as they were typed.
struct Texts {
  std::string mode;
  std::string kinds;
  std::string format = "table";
  std::string columns;
  std::string match;
  std::vector<std::string> conditions;
  std::string sort;
  std::string logLevel;
};

CLI::Validator Checked(const Check& check) {
  return CLI::Validator([check](std::string& value) { return check(value); }, "");
}

CLI::Option* AddValue(CLI::App& command, const std::string& name, std::string& value, const std::string& type,
                      const Check& check, const std::string& description) {
  return command.add_option(name, value, description)->check(Checked(check))->type_name(type);
}

void AddFlag(CLI::App& command, const std::string& name, bool& flag, const std::string& description) {
  command.add_flag(name, flag, description)->disable_flag_override();
}

void AddFile(CLI::App& command, const std::string& name, std::string& path, const std::string& description) {
  AddValue(command, name, path, "", NotEmpty("name"), description)->required();
}

void AddFormat(CLI::App& command, Texts& texts, const std::map<std::string, Format>& formats) {
  AddValue(command, "--format", texts.format, "FORMAT", OneOf(Names(formats)),
           "How to show it: " + Joined(Names(formats)))
      ->capture_default_str();
}

void AddOutput(CLI::App& command, Options& options) {
  AddValue(command, "--output", options.output, "FILE", NotEmpty("name"), "File to write; standard output without it");
}

void AddHostAndLog(CLI::App& command, Texts& texts, Options& options) {
  AddValue(command, "--host-id", options.hostId, "TEXT", NotEmpty("identifier"),
           "Identifies this machine; its own GUID without it, which cloned machines share");
  AddValue(command, "--log-level", texts.logLevel, "LEVEL", OneOf({"0", "1", "2", "3", "4"}),
           "Log lines up to this level: 1 errors, 2 warnings, 3 devices, 4 everything; 0 for no line");
  AddValue(command, "--log-file", options.logFile, "FILE", NotEmpty("name"),
           "File to append log lines to; standard error without it");
  AddFlag(command, "--quiet", options.quiet, "Do not show on a terminal what is being read; a log turns that off, too");
}

CLI::App& AddCommand(CLI::App& app, const std::string& name, const std::string& description) {
  return *app.add_subcommand(name, description)->group("Commands");
}

void AddList(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& list = AddCommand(app, "list",
                              "Lists the inventory: every driver service, device and driver package of this "
                              "machine is one record. It is the command when no other is named.");
  AddValue(list, "--kind", texts.kinds, "KIND,...", SomeOf(KindNames()),
           "Only records of these kinds: " + Joined(KindNames()));
  AddFlag(list, "--third-party", options.thirdPartyOnly, "Leave out what the maker of Windows made");
  AddValue(list, "--mode", texts.mode, "MODE", OneOf(Names(Modes())),
           "Instead of the inventory, show a listing of the library exactly as its hosts get it: drivers of present "
           "devices (by-device), drivers registered as services (registered), or both and the OEM packages merged, one "
           "record per name (all)");
  AddFormat(list, texts, ListFormats);
  AddFlag(
      list, "--raw", options.csv.isRaw,
      "With --format csv: leave texts as they are; without it, those that a spreadsheet would take for formulas get an "
      "apostrophe in front");
  AddFlag(list, "--bom", options.csv.hasBom, "With --format csv: begin with a byte order mark, for Excel");
  // What they may name depends on the mode, so they are checked when that is known.
  list.add_option("--columns", texts.columns,
                  "Columns to show: " + Joined(ColumnNames(ColumnsOf({}))) +
                      "; with --mode: " + Joined(ColumnNames(ColumnsOf(ListingMode::All))))
      ->type_name("COLUMN,...");
  AddValue(list, "--match", texts.match, "PATTERN", NotEmpty("pattern"),
           "Only rows with a column like this: * is any text, ? any character, case does not count");
  list.add_option("--where", texts.conditions,
                  "Only rows whose column is like the pattern; may be given several times, and all must hold")
      ->type_name("COLUMN=PATTERN")
      ->allow_extra_args(false);
  list.add_option("--sort", texts.sort, "Column to order by, ascending; versions as versions, numbers as numbers")
      ->type_name("COLUMN");
  AddOutput(list, options);
  AddHostAndLog(list, texts, options);
}

void AddSnapshot(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& snapshot = AddCommand(app, "snapshot", "Writes the whole inventory to a file, for diff.");
  AddFile(snapshot, "FILE", options.file, "File to write; a former one stays whole until the new one is");
  AddHostAndLog(snapshot, texts, options);
}

void AddDiff(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& diff =
      AddCommand(app, "diff", "Compares two inventories. Exit code: 0 the same, 1 they differ, 2 trouble.");
  AddFile(diff, "OLD", options.file, "A snapshot");
  AddFile(diff, "NEW", options.newFile, "Another snapshot, or \"live\": this machine as it is now");
  AddFormat(diff, texts, ReportFormats);
  AddOutput(diff, options);
  AddHostAndLog(diff, texts, options);
}

void AddHealth(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& health = AddCommand(
      app, "health", "Finds what deserves a look. Exit code: 0 nothing found, 1 something found, 2 trouble.");
  AddFormat(health, texts, ReportFormats);
  AddOutput(health, options);
  AddHostAndLog(health, texts, options);
}

/// Throws what is wrong with `value` of the option.
void Require(const std::string& option, const Check& check, const std::string& value) {
  const std::string problem = check(value);
  if (!problem.empty()) throw CLI::ValidationError(option, problem);
}

void RefuseTogether(const CLI::App& command, const std::string& option, const std::string& other) {
  if (command.count(option) > 0 && command.count(other) > 0) {
    throw CLI::ValidationError(option + " cannot be used with " + other);
  }
}

void RequireCsv(const CLI::App& command, const std::string& option, Format format) {
  if (command.count(option) > 0 && format != Format::Csv) throw CLI::ValidationError(option + " needs --format csv");
}

Condition ConditionOf(const std::vector<Column>& columns, const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == std::string::npos) {
    throw CLI::ValidationError("--where", "\"" + text + "\" is not of the form COLUMN=PATTERN");
  }
  const std::string name = text.substr(0, sign);
  Require("--where", OneOf(ColumnNames(columns)), name);
  return {columns[IndexOf(columns, name)], text.substr(sign + 1)};
}

std::vector<Column> ColumnsNamed(const std::vector<Column>& columns, const std::string& names) {
  Require("--columns", SomeOf(ColumnNames(columns)), names);
  std::vector<Column> chosen;
  for (const std::string& name : SplitAtCommas(names)) chosen.push_back(columns[IndexOf(columns, name)]);
  return chosen;
}

/// Sets what the options of `list` hold beyond texts.
void InterpretList(const CLI::App& list, const Texts& texts, Options& options) {
  RefuseTogether(list, "--kind", "--mode");
  RefuseTogether(list, "--third-party", "--mode");
  RequireCsv(list, "--raw", options.format);
  RequireCsv(list, "--bom", options.format);
  if (!texts.mode.empty()) options.mode = Modes().at(texts.mode);
  if (!texts.kinds.empty()) {
    for (const std::string& kind : SplitAtCommas(texts.kinds)) options.kinds.push_back(*inventory::KindNamed(kind));
  }
  const std::vector<Column> columns = ColumnsOf(options.mode);
  options.columnsChosen = list.count("--columns") > 0;
  options.columns =
      options.columnsChosen ? ColumnsNamed(columns, texts.columns) : DefaultColumns(columns, options.format);
  if (!texts.match.empty()) options.selection.match = texts.match;
  for (const std::string& text : texts.conditions) options.selection.conditions.push_back(ConditionOf(columns, text));
  if (list.count("--sort") > 0) {
    Require("--sort", OneOf(ColumnNames(columns)), texts.sort);
    options.selection.sort = columns[IndexOf(columns, texts.sort)];
  }
}

/// Sets what `options` hold beyond texts.
void Interpret(const CLI::App& command, const Texts& texts, Options& options) {
  options.command = Commands.at(command.get_name());
  options.format = ListFormats.at(texts.format);
  if (!texts.logLevel.empty()) options.logLevel = texts.logLevel[0] - '0';
  if (options.command == Command::List) InterpretList(command, texts, options);
}

/// One sentence about what is wrong with a command line, in words that do not know the library that read it.
std::string Sentence(const CLI::ParseError& error) {
  const std::string text = error.what();
  const std::string subject = text.substr(0, text.find(':'));
  if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ArgumentMismatch)) return text + ".";
  const std::size_t flagEnd = text.find(" was given a disallowed flag override");
  if (flagEnd != std::string::npos) return "--" + text.substr(0, flagEnd) + " takes no value.";
  return subject + (subject == "--where" ? " takes one value each time." : " takes one value, once.");
}

std::string UnknownArguments(const std::vector<std::string>& arguments) {
  std::string sentence = "unknown argument:";
  for (const std::string& argument : arguments) sentence += " " + argument;
  return sentence + ".";
}

/// Whether the arguments need no command in front.
bool NamesCommand(const std::vector<std::string>& arguments) {
  if (arguments.empty()) return false;
  const std::string& first = arguments.front();
  return Commands.count(first) != 0 || first == "--help" || first == "-h" || first == "--version";
}

}  // namespace

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("Lists the device drivers of this machine, and finds what changed and what deserves a look.",
               "driverlist");
  app.formatter(std::make_shared<HelpText>());
  // A name such as "/tmp/list.csv" is no option. The commands inherit that.
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "driverlist " + inventory::ToolVersion(), "Print the version");
  app.require_subcommand(1);
  app.set_help_flag("-h,--help", "Print this help");
  Texts texts;
  Options options;
  AddList(app, texts, options);
  AddSnapshot(app, texts, options);
  AddDiff(app, texts, options);
  AddHealth(app, texts, options);
  // CLI11 takes them last to first.
  std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
  if (!NamesCommand(arguments)) reversed.emplace_back("list");
  try {
    app.parse(reversed);
    Interpret(*app.get_subcommands().front(), texts, options);
  } catch (const CLI::CallForHelp&) {
    // Of the command, where there is one; else of all.
    return {std::nullopt, app.help("", CLI::AppFormatMode::All), 0};
  } catch (const CLI::CallForVersion&) {
    return {std::nullopt, app.version() + "\n", 0};
  } catch (const CLI::ExtrasError&) {
    return {std::nullopt, UnknownArguments(app.remaining(true)), 2};
  } catch (const CLI::ParseError& error) {
    return {std::nullopt, Sentence(error), 2};
  }
  return {std::move(options), std::string(), 0};
}

}  // namespace driverlist
