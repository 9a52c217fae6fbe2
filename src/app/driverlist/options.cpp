#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

namespace driverlist {
namespace {

const std::map<std::string, Orvane::DriverInfoSetType> Modes = {
    {"all", Orvane::All}, {"registered", Orvane::Registered}, {"by-device", Orvane::ByDevice}};
const std::map<std::string, Format> Formats = {{"table", Format::Table}, {"csv", Format::Csv}, {"json", Format::Json}};

std::vector<std::string> ColumnNames() {
  std::vector<std::string> names;
  for (const Column& column : AllColumns()) names.emplace_back(column.name);
  return names;
}

std::vector<std::string> DefaultColumns(Format format) {
  if (format == Format::Table) return {"name", "file_version", "state", "start_type", "provider", "path"};
  return ColumnNames();
}

/// CLI11 names an enumeration's values by their numbers; people know them by their texts.
template <typename Value>
CLI::Validator OneOf(const std::map<std::string, Value>& values) {
  std::vector<std::string> names;
  for (const auto& [name, value] : values) names.push_back(name);
  return CLI::IsMember(names);
}

CLI::Validator NotEmpty() {
  return CLI::Validator([](const std::string& text) { return text.empty() ? "a name is missing" : std::string(); }, "");
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
  std::vector<std::string> columns;
  Options options;
  app.add_option("--mode", mode, "Which drivers: of present devices, registered as services, or all sources merged")
      ->check(OneOf(Modes))
      ->capture_default_str();
  app.add_option("--format", format, "How to show them")->check(OneOf(Formats))->capture_default_str();
  app.add_option("--columns", columns, "Fields to show, separated by commas")
      ->delimiter(',')
      ->check(CLI::IsMember(ColumnNames()));
  app.add_option("--output", options.output, "File to write; standard output without it")->check(NotEmpty());
  app.add_option("--log-level", options.logLevel, "Log lines up to this level: 1 errors to 4 everything, 0 none")
      ->check(CLI::Range(0, 4));
  app.add_option("--log-file", options.logFile, "File to append log lines to; standard error without it")
      ->check(NotEmpty());
  try {
    // CLI11 takes them last to first.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return {std::nullopt, app.help(), 0};
  } catch (const CLI::CallForVersion&) {
    return {std::nullopt, app.version() + "\n", 0};
  } catch (const CLI::ParseError& error) {
    return {std::nullopt, error.what(), 2};
  }
  options.mode = Modes.at(mode);
  options.format = Formats.at(format);
  if (columns.empty()) columns = DefaultColumns(options.format);
  for (const std::string& name : columns) options.columns.push_back(*FindColumn(name));
  return {std::move(options), std::string(), 0};
}

}  // namespace driverlist
