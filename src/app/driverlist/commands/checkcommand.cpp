#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"
#include "formats/checkformats.h"
#include "formats/formats.h"
#include "inventory/documents.h"
#include "inventory/policycheck.h"

namespace driverlist {
namespace {

using inventory::Policy;
using inventory::PolicyCheck;

PolicyCheck Checked(const Policy& policy, const inventory::Inventory& inventory, const std::string& from) {
  try {
    RequireKnowledge(policy, inventory);
  } catch (const inventory::InputProblem& problem) {
    throw Unusable(from, problem);
  }
  return inventory::Check(policy, inventory);
}

/// Machine by machine: of each, only the findings are kept.
std::vector<PolicyCheck> Checked(const Policy& policy, const Options& options) {
  std::vector<PolicyCheck> checks;
  for (const std::string& path : options.fromEach) {
    checks.push_back(Checked(policy, SnapshotInventory(path), path));
  }
  if (!options.fromEach.empty()) return checks;
  Options live = options;
  const auto isOfImages = [](const inventory::Column& member) { return member.isOfVerification; };
  live.verify = options.verify || !RuleThatAsksFor(policy, isOfImages).empty();
  checks.push_back(Checked(policy, LiveInventory(live), "this machine"));
  return checks;
}

std::string Formatted(const Options& options, const Policy& policy, const std::vector<PolicyCheck>& checks,
                      const Page& page) {
  switch (options.format) {
    case Format::Json:
      return PolicyCheckJson(policy, checks, inventory::ThisMachine(options.hostId));
    case Format::JUnit:
      return FormatJUnit(policy, checks);
    case Format::Csv:
      return FormatCsv(PolicyCheckTable(policy, checks), options.csv);
    case Format::Markdown:
      return FormatMarkdown(PolicyCheckTable(policy, checks));
    default:
      return FormatPolicyCheck(policy, checks, page);
  }
}

bool IsKept(const std::vector<PolicyCheck>& checks) {
  for (const PolicyCheck& check : checks) {
    if (check.CountOf(inventory::RuleState::Broken) > 0) return false;
  }
  return true;
}

}  // namespace

int RunCheck(const Options& options) {
  const Policy policy = ReadInputFile(options.file, &inventory::ReadPolicy);
  const std::vector<PolicyCheck> checks = Checked(policy, options);
  const auto format = [&](const Page& page) { return Formatted(options, policy, checks, page); };
  return Deliver(options, format, IsKept(checks) ? 0 : 1);
}

}  // namespace driverlist
