#include "commands/sharedoptions.h"

namespace driverlist {
namespace {

/// The name of the validator that holds the suggestions.
constexpr char Choices[] = "choices";

}  // namespace

CLI::Option* AddValue(CLI::App& command, const std::string& name, const TakeValue& take, const std::string& type,
                      const Check& check, const std::string& description) {
  CLI::Option* const option = command.add_option_function<std::string>(name, take, description)->type_name(type);
  option->check(CLI::Validator([check](std::string& value) { return check(value); }, ""));
  Offer(*option, check.Choices());
  return option;
}

CLI::Option* AddValue(CLI::App& command, const std::string& name, std::string& value, const std::string& type,
                      const Check& check, const std::string& description) {
  return AddValue(
      command, name, [&value](const std::string& text) { value = text; }, type, check, description);
}

CLI::Option* AddValues(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                       const std::string& type, const std::string& description) {
  return command.add_option(name, values, description)->type_name(type)->allow_extra_args(false);
}

CLI::Option* AddValues(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                       const std::string& type, const Check& check, const std::string& description) {
  CLI::Option* const option = AddValues(command, name, values, type, description);
  option->check(CLI::Validator([check](std::string& value) { return check(value); }, ""));
  Offer(*option, check.Choices());
  return option;
}

void Offer(CLI::Option& option, const std::vector<std::string>& choices) {
  if (choices.empty()) return;
  const auto acceptAll = [](std::string&) { return std::string(); };
  option.check(CLI::Validator(acceptAll, Joined(choices)).name(Choices));
}

std::vector<std::string> ChoicesOf(CLI::Option& option) {
  try {
    std::vector<std::string> choices = SplitAtCommas(option.get_validator(Choices)->get_description());
    for (std::string& choice : choices) choice.erase(0, choice.find_first_not_of(' '));
    return choices;
  } catch (const CLI::OptionNotFound&) {
    return {};
  }
}

void AddFlag(CLI::App& command, const std::string& name, bool& flag, const std::string& description) {
  command.add_flag(name, flag, description)->disable_flag_override();
}

CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& path, const std::string& description) {
  return AddValue(command, name, path, "", NotEmpty("name"), description)->required();
}

void AddFormat(CLI::App& command, const Formats& formats, Options& options) {
  const auto take = [&options, &formats](const std::string& name) { options.format = formats.at(name); };
  AddValue(command, "--format", take, "FORMAT", OneOf(Names(formats)), "Output format: " + Joined(Names(formats)))
      ->default_str("table");
}

const Formats& ReportFormats() {
  static const Formats formats = {{"table", Format::Table}, {"json", Format::Json}, {"html", Format::Html}};
  return formats;
}

void AddOutput(CLI::App& command, Options& options) {
  AddValue(command, "--output", options.output, "FILE", NotEmpty("name"), "File to write; by default, standard output");
}

void AddKnown(CLI::App& command, Options& options) {
  const auto take = [&options](const std::vector<std::string>& paths) {
    options.known = paths;
    options.verify = true;
  };
  command
      .add_option_function<std::vector<std::string>>(
          "--known", take,
          "A list of known drivers to look up images in, instead of known-drivers.json next to the program: the JSON "
          "of LOLDrivers, a code integrity policy in XML, or a list made by scripts/make-known-drivers; may be given "
          "several times")
      ->type_name("FILE")
      ->check(CLI::Validator([](std::string& value) { return NotEmpty("name")(value); }, ""))
      ->allow_extra_args(false);
}

void AddVerify(CLI::App& command, Options& options) {
  command
      .add_flag_callback(
          "--verify", [&options] { options.verify = true; },
          "Read the images of services and report their hashes, whether they are signed and by whom, and whether they "
          "are on a list of known drivers")
      ->disable_flag_override();
  AddKnown(command, options);
}

void AddFrom(CLI::App& command, Options& options) {
  AddValue(command, "--from", options.from, "FILE", NotEmpty("name"), FromMeaning);
}

void AddHostAndLog(CLI::App& command, Options& options) {
  AddValue(command, "--host-id", options.hostId, "TEXT", NotEmpty("identifier"),
           "Identifier of this machine; by default its GUID, which cloned machines share");
  AddValue(
      command, "--log-level", [&options](const std::string& level) { options.logLevel = level[0] - '0'; }, "LEVEL",
      OneOf({"0", "1", "2", "3", "4"}),
      "Log lines up to this level: 1 errors, 2 warnings, 3 devices, 4 everything; 0 logs nothing");
  AddValue(command, "--log-file", options.logFile, "FILE", NotEmpty("name"),
           "File to append log lines to; by default, standard error");
  AddFlag(command, "--quiet", options.quiet, "Show no progress on a terminal; a log turns the progress off, too");
}

void Require(const std::string& option, const Check& check, const std::string& value) {
  const std::string problem = check(value);
  if (!problem.empty()) throw CLI::ValidationError(option, problem);
}

void RefuseTogether(const CLI::App& command, const std::string& option, const std::string& other) {
  if (command.count(option) > 0 && command.count(other) > 0) {
    throw CLI::ValidationError(option + " cannot be used with " + other);
  }
}

}  // namespace driverlist
