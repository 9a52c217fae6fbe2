#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/algorithm/string/split.hpp>
#include <map>

namespace driverlist {
namespace {

const std::map<std::string, Orvane::DriverInfoSetType> Modes = {
    {"all", Orvane::All}, {"registered", Orvane::Registered}, {"by-device", Orvane::ByDevice}};
const std::map<std::string, Format> Formats = {{"table", Format::Table}, {"csv", Format::Csv}, {"json", Format::Json}};

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

CLI::Validator NotEmpty() {
  return CLI::Validator([](const std::string& text) { return text.empty() ? "the name is empty" : std::string(); }, "");
}

/// One sentence about what is wrong with a command line, in words that do not know the library that read it.
std::string Sentence(const CLI::ParseError& error) {
  const std::string text = error.what();
  switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::ArgumentMismatch:
      return text.substr(0, text.find(':')) + " takes one value, once.";
    case CLI::ExitCodes::ExtrasError:
      return "unknown argument:" + text.substr(std::min(text.find(':') + 1, text.size())) + ".";
    default:
      return text + ".";
  }
}

}  // namespace

std::string ModeName(Orvane::DriverInfoSetType mode) {
  for (const auto& [name, value] : Modes) {
    if (value == mode) return name;
  }
  return std::string();
}

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("Lists the device drivers of this machine.", "driverlist");
  // A name such as "/tmp/list.csv" is no option.
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "driverlist " DRIVERLIST_VERSION);
  std::string mode = "all";
  std::string format = "table";
  std::string columns;
  std::string logLevel;
  Options options;
  app.add_option("--mode", mode,
                 "Drivers of present devices, drivers registered as services, or both and the OEM packages merged: " +
                     Joined(Names(Modes)))
      ->check(OneOf(Names(Modes)))
      ->type_name("MODE")
      ->capture_default_str();
  app.add_option("--format", format, "How to show them: " + Joined(Names(Formats)))
      ->check(OneOf(Names(Formats)))
      ->type_name("FORMAT")
      ->capture_default_str();
  app.add_option("--columns", columns, "Fields to show: " + Joined(ColumnNames()))
      ->check(EachOneOf(ColumnNames()))
      ->type_name("FIELD,...");
  app.add_option("--output", options.output, "File to write; standard output without it")
      ->check(NotEmpty())
      ->type_name("FILE");
  app.add_option("--log-level", logLevel,
                 "Log lines up to this level: 1 errors, 2 warnings, 3 devices, 4 everything, 0 none")
      ->check(OneOf({"0", "1", "2", "3", "4"}))
      ->type_name("LEVEL");
  app.add_option("--log-file", options.logFile, "File to append log lines to; standard error without it")
      ->check(NotEmpty())
      ->type_name("FILE");
  try {
    // CLI11 takes them last to first.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return {std::nullopt, app.help(), 0};
  } catch (const CLI::CallForVersion&) {
    return {std::nullopt, app.version() + "\n", 0};
  } catch (const CLI::ParseError& error) {
    return {std::nullopt, Sentence(error), 2};
  }
  options.mode = Modes.at(mode);
  options.format = Formats.at(format);
  if (!logLevel.empty()) options.logLevel = logLevel[0] - '0';
  for (const std::string& name : columns.empty() ? DefaultColumns(options.format) : SplitAtCommas(columns))
    options.columns.push_back(*FindColumn(name));
  return {std::move(options), std::string(), 0};
}

}  // namespace driverlist
