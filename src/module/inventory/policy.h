/// @file
/// Policies: rules that people write for the drivers of their machines.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/conditions.h"
#include "inventory/inventory.h"
#include "inventory/severity.h"

namespace inventory {

/// How many rules a policy may have, how many conditions in all, and how long one may be, in bytes.
constexpr std::size_t MostPolicyRules = 1'000;
constexpr std::size_t MostPolicyConditions = 5'000;
constexpr std::size_t LongestCondition = 1'000;

/// Conditions as a policy has them: alternatives, of which one must hold; of its conditions, all must.
struct PolicyConditions {
  Conditions conditions;
  /// As they are written, at the same places.
  std::vector<std::vector<std::string>> texts;
};

/// What a rule demands of drivers.
enum class Demand {
  /// No driver meets the conditions.
  Forbid,
  /// Every driver meets them.
  Expect,
  /// At least one driver meets them.
  Require
};

/// A demand on those records that meet `where`.
struct PolicyClause {
  PolicyConditions where;
  Demand demand = Demand::Forbid;
  PolicyConditions conditions;
};

struct PolicyRule {
  /// Unique in its policy.
  std::string name;
  Severity severity = Severity::Medium;
  /// For people; may be empty.
  std::string message;
  /// It is kept when all of them are.
  std::vector<PolicyClause> clauses;
};

/// Texts are UTF-8.
struct Policy {
  std::string name;
  std::string description;
  std::vector<PolicyRule> rules;
};

/// Reads a policy: JSON, in the language of docs/driverlist.md. Throws InputProblem, with the JSON pointer of the
/// place, if anything in it is not understood: a part of a policy is never checked.
Policy ReadPolicy(std::streambuf& text);

/// The name of the first rule that asks for a member for which `isMeant` holds; empty when no rule does.
std::string_view RuleThatAsksFor(const Policy& policy, const std::function<bool(const Column& member)>& isMeant);

/// Throws InputProblem if `policy` asks about signatures or lists what `inventory` does not know, since images were not
/// verified or not looked up: silence is not a pass.
void RequireKnowledge(const Policy& policy, const Inventory& inventory);

}  // namespace inventory
