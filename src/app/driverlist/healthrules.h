/// @file
/// What deserves a look.
#pragma once

#include <string>
#include <vector>

#include "machinefacts.h"

namespace driverlist {

/// Texts are UTF-8.
struct Finding {
  /// Such as "device-without-driver".
  std::string rule;
  /// The driver, device, service or package.
  std::string subject;
  /// What makes it one, in words for people.
  std::string evidence;
};

struct HealthRule {
  std::string name;
  /// What it looks for, as one line.
  std::string meaning;
  /// Appends what it finds.
  void (*apply)(const MachineFacts& facts, std::vector<Finding>& findings);
};

/// In the order in which findings are told.
const std::vector<HealthRule>& HealthRules();

/// What all rules find.
std::vector<Finding> Examine(const MachineFacts& facts);

}  // namespace driverlist
