/// @file
/// Whether the drivers of a machine keep the rules of a policy.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/inventory.h"
#include "inventory/policy.h"

namespace inventory {

/// How many violations of a policy are kept for one machine; further ones are only counted.
constexpr std::size_t MostViolations = 100'000;

/// A driver that breaks a rule, or the lack of one.
struct Violation {
  /// A service by its service name, a package by its INF, everything else by its name; for a driver that is required,
  /// the conditions that no driver meets.
  std::string subject;
  /// What makes it one, in words for people.
  std::string evidence;
  /// "service", "device", "package" or "chipset"; empty for a driver that is not there.
  std::string kind = {};
};

enum class RuleState {
  Kept,
  Broken,
  /// No driver is one that the rule is about.
  NotApplicable
};

constexpr std::array<RuleState, 3> RuleStates = {RuleState::Kept, RuleState::Broken, RuleState::NotApplicable};

/// "passed", "failed" or "skipped".
std::string_view RuleStateName(RuleState state);

struct RuleResult {
  RuleState state = RuleState::Kept;
  /// How many records the rule is about; not those that a requirement looks for.
  std::uint64_t examined = 0;
  /// How many violations there are, and those that are kept.
  std::uint64_t violationCount = 0;
  std::vector<Violation> violations = {};
};

/// What a policy says of one machine. Results are those of the policy's rules, in their order.
struct PolicyCheck {
  Head head;
  std::vector<RuleResult> results;

  std::size_t CountOf(RuleState state) const;
};

/// Checks `inventory`. Ages count from its time. An image that could not be read breaks a rule about signatures or
/// hashes that it might break. Needs what RequireKnowledge() demands.
PolicyCheck Check(const Policy& policy, const Inventory& inventory);

}  // namespace inventory
