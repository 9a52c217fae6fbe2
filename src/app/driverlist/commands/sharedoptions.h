/// @file
/// Options that several commands have, and functions that add an option to the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "commands/checks.h"
#include "commands/options.h"

namespace driverlist {

/// Receives a value that passed its check.
using TakeValue = std::function<void(const std::string& value)>;

/// An option with a value, called `type` in the help.
CLI::Option* AddValue(CLI::App& command, const std::string& name, const TakeValue& take, const std::string& type,
                      const Check& check, const std::string& description);

/// The same for a value that is stored as typed.
CLI::Option* AddValue(CLI::App& command, const std::string& name, std::string& value, const std::string& type,
                      const Check& check, const std::string& description);

/// The same for one that may be given several times.
CLI::Option* AddValues(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                       const std::string& type, const std::string& description);

/// The same for values that each pass `check`.
CLI::Option* AddValues(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                       const std::string& type, const Check& check, const std::string& description);

/// Offers `choices` as values of `option`, for completion, without a check.
void Offer(CLI::Option& option, const std::vector<std::string>& choices);

/// The values that are offered for `option`.
std::vector<std::string> ChoicesOf(CLI::Option& option);

/// An option without value.
void AddFlag(CLI::App& command, const std::string& name, bool& flag, const std::string& description);

/// A file that the command needs.
CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& path, const std::string& description);

using Formats = std::map<std::string, Format>;

/// "--format".
void AddFormat(CLI::App& command, const Formats& formats, Options& options);

/// The formats of a comparison.
const Formats& ReportFormats();

/// What --from is for, in the help.
constexpr char FromMeaning[] = "A snapshot to read instead of this machine";

/// "--output".
void AddOutput(CLI::App& command, Options& options);

/// "--known".
void AddKnown(CLI::App& command, Options& options);

/// "--verify" and "--known", which implies it.
void AddVerify(CLI::App& command, Options& options);

/// "--from".
void AddFrom(CLI::App& command, Options& options);

/// The options of every command that looks at a machine.
void AddHostAndLog(CLI::App& command, Options& options);

/// The names of `values`, in their order.
template <typename Value>
std::vector<std::string> Names(const std::map<std::string, Value>& values) {
  std::vector<std::string> names;
  for (const auto& [name, value] : values) names.push_back(name);
  return names;
}

/// Throws CLI::ValidationError if `check` finds something wrong with `value` of the option.
void Require(const std::string& option, const Check& check, const std::string& value);

/// Throws CLI::ValidationError if both options are given.
void RefuseTogether(const CLI::App& command, const std::string& option, const std::string& other);

}  // namespace driverlist
