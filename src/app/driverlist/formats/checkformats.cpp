#include "formats/checkformats.h"

#include "formats/evidencerows.h"
#include "formats/wrapped.h"

namespace driverlist {
namespace {

using inventory::Policy;
using inventory::PolicyCheck;
using inventory::PolicyRule;
using inventory::RuleResult;
using inventory::RuleState;
using inventory::Violation;

/// "signed (Drivers must be signed), high: 2 of 14"
std::string BrokenRuleLine(const PolicyRule& rule, const RuleResult& result) {
  std::string line = rule.severity == inventory::Severity::Critical ? "!!! " : "";
  line += rule.name;
  if (!rule.message.empty()) line += " (" + rule.message + ")";
  line.append(", ").append(SeverityName(rule.severity)).append(": ");
  line += std::to_string(result.violationCount);
  if (result.examined > 0) line += " of " + std::to_string(result.examined);
  return line;
}

std::string BrokenRuleText(const PolicyRule& rule, const RuleResult& result, const Page& page) {
  std::vector<EvidenceRow> rows;
  for (const Violation& violation : result.violations) rows.push_back({violation.subject, violation.evidence});
  std::string text =
      Paragraph(BrokenRuleLine(rule, result), page.width) + FormatEvidence(rows, ToneOf(rule.severity), page);
  const std::uint64_t left = result.violationCount - result.violations.size();
  return left == 0 ? text : text + Paragraph("and " + std::to_string(left) + " more", page.width);
}

/// "passed: a, b", wrapped to the page; empty if no rule has that state.
std::string RulesLine(const Policy& policy, const PolicyCheck& check, RuleState state, const std::string& label,
                      const Page& page) {
  std::string names;
  for (std::size_t i = 0; i < policy.rules.size(); ++i) {
    if (check.results[i].state == state) names += (names.empty() ? "" : ", ") + policy.rules[i].name;
  }
  if (names.empty()) return std::string();
  return Paragraph(label + names, page.width);
}

std::string CountsLine(const Policy& policy, const PolicyCheck& check) {
  const std::size_t all = policy.rules.size();
  const std::size_t broken = check.CountOf(RuleState::Broken);
  const std::string rules = std::to_string(all) + (all == 1 ? " rule" : " rules");
  return broken == 0 ? "no rule of " + rules + " failed" : std::to_string(broken) + " of " + rules + " failed";
}

std::string MachineText(const Policy& policy, const PolicyCheck& check, const Page& page) {
  std::string text;
  for (std::size_t i = 0; i < policy.rules.size(); ++i) {
    if (check.results[i].state != RuleState::Broken) continue;
    text += BrokenRuleText(policy.rules[i], check.results[i], page) + "\n";
  }
  return text + RulesLine(policy, check, RuleState::Kept, "passed: ", page) +
         RulesLine(policy, check, RuleState::NotApplicable, "skipped, since no driver is concerned: ", page) +
         Paragraph(CountsLine(policy, check), page.width);
}

std::string MachineLine(const inventory::Head& head) {
  std::string line;
  for (const std::string& part : {head.host, head.windows.empty() ? "" : "Windows " + head.windows, head.time}) {
    if (!part.empty()) line += (line.empty() ? "" : ", ") + part;
  }
  return "=== " + line;
}

}  // namespace

std::string FormatPolicyCheck(const Policy& policy, const std::vector<PolicyCheck>& checks, const Page& page) {
  std::string text;
  for (const PolicyCheck& check : checks) {
    if (!text.empty()) text += "\n";
    if (checks.size() > 1) text += Paragraph(MachineLine(check.head), page.width);
    text += MachineText(policy, check, page);
  }
  return text;
}

Table PolicyCheckTable(const Policy& policy, const std::vector<PolicyCheck>& checks) {
  Table table;
  for (const std::string_view name : {"host", "rule", "severity", "result", "message", "kind", "subject", "evidence"}) {
    inventory::Column& column = table.columns.emplace_back();
    column.name = column.label = name;
  }
  const auto add = [&table](const std::string& host, const PolicyRule& rule, RuleState state, const Violation& found) {
    std::vector<Cell>& row = table.rows.emplace_back();
    for (const std::string& text :
         {host, rule.name, std::string(SeverityName(rule.severity)), std::string(RuleStateName(state)), rule.message,
          found.kind, found.subject, found.evidence}) {
      row.push_back({text});
    }
  };
  for (const PolicyCheck& check : checks) {
    for (std::size_t i = 0; i < policy.rules.size(); ++i) {
      const RuleResult& result = check.results[i];
      for (const Violation& violation : result.violations) {
        add(check.head.host, policy.rules[i], result.state, violation);
      }
      if (result.violations.empty()) add(check.head.host, policy.rules[i], result.state, {});
    }
  }
  return table;
}

}  // namespace driverlist
