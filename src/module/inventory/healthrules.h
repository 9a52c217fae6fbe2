/// @file
/// What deserves a look on a machine.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/record.h"
#include "inventory/severity.h"

namespace inventory {

class NextSteps;

/// Texts are UTF-8.
struct Finding {
  /// Name of the rule, such as "device-without-driver".
  std::string rule;
  /// What the finding is about: a service by its service name, a device by its name, a package by its INF, a driver
  /// with several versions by its file name in lower case.
  std::string subject;
  /// Why it is a finding, in words for people.
  std::string evidence;
  /// That of the rule.
  Severity severity = Severity::Low;
  /// What to do about it, in words for people: a sentence without its end.
  std::string nextStep = {};
  /// The rule and a digest, such as "unused-package-1f2e3d4c5b6a79880123". No two findings of an examination share one.
  /// It stays the same from run to run and over a reboot while the same thing is in the same state, verified or not,
  /// and changes where an alarm is wanted: see HealthRule.
  std::string id = {};
};

/// Of a finding, what its rule knows.
struct Discovery {
  std::string subject;
  std::string evidence;
  std::string nextStep;
  /// Makes the identity of the finding, together with the rule: which thing it is, and what is wrong with it as far as
  /// a change of that is news. For images that were verified that is service, path and hash; for a signature that does
  /// not hold also the code of the problem; for an image that is not verified service, path, version and size; for a
  /// device its instance identifier, and its problem; for a package its names, provider and version; for a driver of
  /// several versions each version and its place. The state of a service and the words of the evidence do not count.
  std::vector<std::string> state;
};

struct HealthRule {
  std::string_view name;
  /// What the rule looks for, in one line.
  std::string_view meaning;
  Severity severity = Severity::Low;
  /// Its findings in the order of `records`; drivers with several versions in the order of their names.
  std::vector<Discovery> (*find)(const Records& records, const NextSteps& steps);
  /// Whether it finds something only in verified images.
  bool needsVerification = false;
};

/// All rules, in the order in which findings are reported.
const std::array<HealthRule, 13>& HealthRules();

/// The rule called `name`; null if there is no such rule.
const HealthRule* FindHealthRule(std::string_view name);

/// The findings of all rules in an inventory. Asks nothing about this machine.
std::vector<Finding> Examine(const Records& records);

}  // namespace inventory
