#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/algorithm/string/split.hpp>
#include <map>

namespace driverlist {
namespace {

const std::map<std::string, Orvane::DriverInfoSetType> Modes = {
    {"all", Orvane::All}, {"registered", Orvane::Registered}, {"by-device", Orvane::ByDevice}};
const std::map<std::string, Format> ListFormats = {{"table", Format::Table}, {"csv", Format::Csv},
                                                   {"json", Format::Json},   {"jsonl", Format::JsonLines},
                                                   {"html", Format::Html},   {"markdown", Format::Markdown}};
const std::map<std::string, Format> ReportFormats = {{"table", Format::Table}, {"json", Format::Json}};

template <typename Value>
std::vector<std::string> Names(const std::map<std::string, Value>& values) {
  std::vector<std::string> names;
  for (const auto& [name, value] : values) names.push_back(name);
  return names;
}

std::vector<std::string> ColumnNames() {
  std::vector<std::string> names;
  for (const Column& column : AllColumns()) names.emplace_back(column.name);
  return names;
}

std::vector<std::string> DefaultColumns(Format format) {
  if (format == Format::Table) return {"name", "file_version", "state", "start_type", "provider", "path"};
  if (format == Format::Html)
    return {"name", "description", "provider", "file_version", "state", "start_type", "date", "size", "path"};
  return ColumnNames();
}

std::string Joined(const std::vector<std::string>& names) {
  std::string joined;
  for (const std::string& name : names) joined += (joined.empty() ? "" : ", ") + name;
  return joined;
}

CLI::Validator OneOf(const std::vector<std::string>& names) {
  const auto check = [names](const std::string& text) {
    const bool known = std::find(names.begin(), names.end(), text) != names.end();
    return known ? std::string() : "\"" + text + "\" is none of " + Joined(names);
  };
  return CLI::Validator(check, "");
}

std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  return boost::algorithm::split(parts, text, [](char c) { return c == ','; });
}

CLI::Validator EachOneOf(const std::vector<std::string>& names) {
  const auto check = [one = OneOf(names)](const std::string& text) {
    std::string problem;
    for (const std::string& part : SplitAtCommas(text)) {
      if (problem.empty()) problem = one(part);
    }
    return problem;
  };
  return CLI::Validator(check, "");
}

CLI::Validator NotEmpty(const std::string& what = "name") {
  return CLI::Validator(
      [what](const std::string& text) { return text.empty() ? "the " + what + " is empty" : std::string(); }, "");
}

CLI::Validator FieldAndValue() {
  const auto check = [field = OneOf(ColumnNames())](const std::string& text) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) return "\"" + text + "\" is not of the form FIELD=VALUE";
    return field(text.substr(0, sign));
  };
  return CLI::Validator(check, "");
}

/// One sentence about what is wrong with a command line, in words that do not know the library that read it.
std::string Sentence(const CLI::ParseError& error) {
  const std::string text = error.what();
  const std::string subject = text.substr(0, text.find(':'));
  if (text.compare(0, 6, "quiet ") == 0) return "--quiet takes no value.";
  if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ArgumentMismatch)) return text + ".";
  return subject + (subject == "--where" ? " takes one value each time." : " takes one value, once.");
}

std::string UnknownArguments(const std::vector<std::string>& arguments) {
  std::string sentence = "unknown argument:";
  for (const std::string& argument : arguments) sentence += " " + argument;
  return sentence + ".";
}

/// The options as they stand on the command line.
struct Texts {
  std::string mode = "all";
  std::string format = "table";
  std::string columns;
  std::string match;
  std::vector<std::string> conditions;
  std::string sort;
  std::string logLevel;
};

void AddOutput(CLI::App& command, Options& options) {
  command.add_option("--output", options.output, "File to write; standard output without it")
      ->check(NotEmpty())
      ->type_name("FILE");
}

void AddFormat(CLI::App& command, Texts& texts, const std::map<std::string, Format>& formats) {
  command.add_option("--format", texts.format, "How to show it: " + Joined(Names(formats)))
      ->check(OneOf(Names(formats)))
      ->type_name("FORMAT")
      ->capture_default_str();
}

void AddLog(CLI::App& command, Texts& texts, Options& options) {
  command
      .add_option("--log-level", texts.logLevel,
                  "Log lines up to this level: 1 errors, 2 warnings, 3 devices, 4 everything, 0 none")
      ->check(OneOf({"0", "1", "2", "3", "4"}))
      ->type_name("LEVEL");
  command.add_option("--log-file", options.logFile, "File to append log lines to; standard error without it")
      ->check(NotEmpty())
      ->type_name("FILE");
  command.add_flag("--quiet", options.quiet, "Do not show on a terminal what is being read; a log turns it off, too")
      ->disable_flag_override();
}

void AddList(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& list = *app.add_subcommand("list", "Lists the drivers; the command when none is named");
  list.add_option("--mode", texts.mode,
                  "Drivers of present devices, drivers registered as services, or both and the OEM packages merged: " +
                      Joined(Names(Modes)))
      ->check(OneOf(Names(Modes)))
      ->type_name("MODE")
      ->capture_default_str();
  AddFormat(list, texts, ListFormats);
  list.add_option("--columns", texts.columns, "Fields to show: " + Joined(ColumnNames()))
      ->check(EachOneOf(ColumnNames()))
      ->type_name("FIELD,...");
  list.add_option("--match", texts.match,
                  "Only drivers with a field like this: * is any text, ? any character, case does not count")
      ->check(NotEmpty("pattern"))
      ->type_name("PATTERN");
  list.add_option("--where", texts.conditions,
                  "Only drivers with this field like this; may be given several times, and all must hold")
      ->check(FieldAndValue())
      ->type_name("FIELD=PATTERN")
      ->allow_extra_args(false);
  list.add_option("--sort", texts.sort, "Field to order by, ascending; versions as versions, dates as dates")
      ->check(OneOf(ColumnNames()))
      ->type_name("FIELD");
  AddOutput(list, options);
  AddLog(list, texts, options);
}

void AddSnapshot(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& snapshot = *app.add_subcommand("snapshot", "Writes the whole inventory to a file, for diff");
  snapshot.add_option("FILE", options.file, "File to write; a former one stays whole until the new one is")
      ->check(NotEmpty())
      ->type_name("")
      ->required();
  AddLog(snapshot, texts, options);
}

void AddDiff(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& diff = *app.add_subcommand("diff", "Tells what differs: exit code 0 nothing, 1 something, 2 trouble");
  diff.add_option("OLD", options.file, "A snapshot")->check(NotEmpty())->type_name("")->required();
  diff.add_option("NEW", options.newFile, "Another snapshot, or \"live\": this machine as it is now")
      ->check(NotEmpty())
      ->type_name("")
      ->required();
  AddFormat(diff, texts, ReportFormats);
  AddOutput(diff, options);
  AddLog(diff, texts, options);
}

void AddHealth(CLI::App& app, Texts& texts, Options& options) {
  CLI::App& health =
      *app.add_subcommand("health", "Tells what deserves a look: exit code 0 nothing, 1 something, 2 trouble");
  AddFormat(health, texts, ReportFormats);
  AddOutput(health, options);
  AddLog(health, texts, options);
}

/// Sets what `options` hold beyond texts.
void Interpret(const Texts& texts, Options& options) {
  options.mode = Modes.at(texts.mode);
  options.format = ListFormats.at(texts.format);
  if (!texts.logLevel.empty()) options.logLevel = texts.logLevel[0] - '0';
  options.columnsChosen = !texts.columns.empty();
  for (const std::string& name : options.columnsChosen ? SplitAtCommas(texts.columns) : DefaultColumns(options.format))
    options.columns.push_back(*FindColumn(name));
  if (!texts.match.empty()) options.selection.match = texts.match;
  for (const std::string& condition : texts.conditions) {
    const std::size_t sign = condition.find('=');
    options.selection.conditions.push_back({*FindColumn(condition.substr(0, sign)), condition.substr(sign + 1)});
  }
  if (!texts.sort.empty()) options.selection.sort = *FindColumn(texts.sort);
}

const std::map<std::string, Command> Commands = {
    {"list", Command::List}, {"snapshot", Command::Snapshot}, {"diff", Command::Diff}, {"health", Command::Health}};

/// Whether the arguments need no command in front.
bool NamesCommand(const std::vector<std::string>& arguments) {
  if (arguments.empty()) return false;
  const std::string& first = arguments.front();
  return Commands.count(first) != 0 || first == "--help" || first == "-h" || first == "--version";
}

}  // namespace

std::string ModeName(Orvane::DriverInfoSetType mode) {
  for (const auto& [name, value] : Modes) {
    if (value == mode) return name;
  }
  return std::string();
}

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("Lists the device drivers of this machine, and tells what changed and what deserves a look.",
               "driverlist");
  // A name such as "/tmp/list.csv" is no option. The commands inherit that.
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "driverlist " DRIVERLIST_VERSION);
  app.require_subcommand(1);
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
  options.command = Commands.at(app.get_subcommands().front()->get_name());
  Interpret(texts, options);
  return {std::move(options), std::string(), 0};
}

}  // namespace driverlist
