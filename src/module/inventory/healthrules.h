/// @file
/// What deserves a look on a machine.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/record.h"

namespace inventory {

/// Texts are UTF-8.
struct Finding {
  /// Name of the rule, such as "device-without-driver".
  std::string rule;
  /// What the finding is about: a service by its service name, a device by its name, a package by its INF, a driver of
  /// several versions by its file name in lower case.
  std::string subject;
  /// What makes it one, in words for people.
  std::string evidence;
};

struct HealthRule {
  std::string_view name;
  /// What it looks for, in one line.
  std::string_view meaning;
  /// Appends a finding for each thing that it finds, in the order of `records`; drivers of several versions in that of
  /// their names.
  void (*apply)(const Records& records, std::vector<Finding>& findings);
  /// Whether what it finds cannot wait.
  bool isAlarm = false;
};

/// All rules, in the order in which findings are reported.
const std::array<HealthRule, 13>& HealthRules();

/// What all rules find in an inventory. Asks nothing of Windows.
std::vector<Finding> Examine(const Records& records);

}  // namespace inventory
