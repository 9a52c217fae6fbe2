#include <algorithm>

#include "commands/commandoptions.h"
#include "commands/sharedoptions.h"

namespace driverlist {
namespace {

const Formats& HealthFormats() {
  static const Formats formats = {{"table", Format::Table},
                                  {"json", Format::Json},
                                  {"csv", Format::Csv},
                                  {"markdown", Format::Markdown},
                                  {"html", Format::Html}};
  return formats;
}

Check RuleName() {
  std::vector<std::string> names;
  for (const inventory::HealthRule& rule : inventory::HealthRules()) names.emplace_back(rule.name);
  return Named("rule", std::move(names));
}

Check SeverityLevel() {
  std::vector<std::string> names;
  for (const inventory::Severity severity : inventory::Severities) names.emplace_back(SeverityName(severity));
  return Named("severity", std::move(names));
}

/// What is examined, and which findings count.
void AddExamination(CLI::App& command, Options& options) {
  AddValues(command, "--rule", options.findings.rules, "RULE", RuleName(),
            "Only what this rule finds; may be given several times");
  AddValues(command, "--not-rule", options.findings.otherRules, "RULE", RuleName(),
            "Leave out what this rule finds; may be given several times");
  AddValue(
      command, "--severity",
      [&options](const std::string& name) { options.findings.severity = inventory::SeverityNamed(name); }, "LEVEL",
      SeverityLevel(), "Only findings of this severity and worse ones: critical, high, medium, low");
  command
      .add_flag("--no-verify",
                "Do not read the images of services: signatures and lists of known drivers are then not checked")
      ->disable_flag_override();
  AddKnown(command, options);
  AddFrom(command, options);
}

/// Sets what follows from several options. Throws if they make no sense together.
void Interpret(const CLI::App& command, Options& options) {
  RefuseTogether(command, "--from", "--host-id");
  RefuseTogether(command, "--from", "--known");
  RefuseTogether(command, "--known", "--no-verify");
  options.verify = command.count("--no-verify") == 0;
  const auto& rules = inventory::HealthRules();
  const auto isChosen = [&options](const inventory::HealthRule& rule) { return IsChosen(rule, options.findings); };
  // To find nothing then would look like good news.
  if (std::none_of(rules.begin(), rules.end(), isChosen)) {
    throw CLI::ValidationError("--rule, --not-rule and --severity leave no rule");
  }
}

}  // namespace

void AddHealthOptions(CLI::App& command, Options& options) {
  AddExamination(command, options);
  AddValue(command, "--baseline", options.baseline, "FILE", NotEmpty("name"),
           "A baseline, whose findings are hidden: only what is new since is reported");
  AddFormat(command, HealthFormats(), options);
  AddOutput(command, options);
  AddHostAndLog(command, options);
  command.final_callback([&command, &options] { Interpret(command, options); });
}

void AddBaselineOptions(CLI::App& command, Options& options) {
  AddFile(command, "FILE", options.file,
          "File to write; a former one stays whole until the new one is; - is standard output");
  AddExamination(command, options);
  AddHostAndLog(command, options);
  command.final_callback([&command, &options] { Interpret(command, options); });
}

}  // namespace driverlist
