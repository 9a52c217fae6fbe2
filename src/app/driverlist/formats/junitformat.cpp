#include <pugixml.hpp>

#include "formats/checkformats.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Policy;
using inventory::PolicyCheck;
using inventory::PolicyRule;
using inventory::RuleResult;
using inventory::RuleState;
using inventory::Violation;

struct TextWriter final : pugi::xml_writer {
  void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }

  std::string text;
};

void Set(pugi::xml_node node, const char* name, const std::string& value) {
  node.append_attribute(name).set_value(Visible(value).c_str());
}

/// The counts that CI systems add up.
void SetCounts(pugi::xml_node node, const std::vector<PolicyCheck>& checks) {
  std::size_t tests = 0;
  std::size_t failures = 0;
  std::size_t skipped = 0;
  for (const PolicyCheck& check : checks) {
    tests += check.results.size();
    failures += check.CountOf(RuleState::Broken);
    skipped += check.CountOf(RuleState::NotApplicable);
  }
  Set(node, "tests", std::to_string(tests));
  Set(node, "failures", std::to_string(failures));
  Set(node, "errors", "0");
  Set(node, "skipped", std::to_string(skipped));
}

/// A line per driver.
std::string FailureText(const RuleResult& result) {
  std::string text;
  for (const Violation& violation : result.violations) {
    text += Visible(violation.subject + ": " + violation.evidence) + "\n";
  }
  const std::uint64_t left = result.violationCount - result.violations.size();
  return left == 0 ? text : text + "and " + std::to_string(left) + " more\n";
}

void AddCase(pugi::xml_node suite, const std::string& policy, const PolicyRule& rule, const RuleResult& result) {
  pugi::xml_node test = suite.append_child("testcase");
  Set(test, "classname", policy);
  Set(test, "name", rule.name);
  Set(test, "time", "0");
  if (result.state == RuleState::NotApplicable) {
    Set(test.append_child("skipped"), "message", "no driver is concerned");
  }
  if (result.state != RuleState::Broken) return;
  pugi::xml_node failure = test.append_child("failure");
  Set(failure, "message", rule.message.empty() ? rule.name : rule.message);
  Set(failure, "type", std::string(SeverityName(rule.severity)));
  failure.text().set(FailureText(result).c_str());
}

}  // namespace

std::string FormatJUnit(const Policy& policy, const std::vector<PolicyCheck>& checks) {
  const std::string name = policy.name.empty() ? "driver policy" : policy.name;
  pugi::xml_document document;
  pugi::xml_node suites = document.append_child("testsuites");
  Set(suites, "name", name);
  SetCounts(suites, checks);
  for (const PolicyCheck& check : checks) {
    pugi::xml_node suite = suites.append_child("testsuite");
    Set(suite, "name", check.head.host.empty() ? name : name + " on " + check.head.host);
    SetCounts(suite, {check});
    Set(suite, "time", "0");
    // Readers of JUnit files expect a time without a zone.
    const std::string& time = check.head.time;
    if (!time.empty()) Set(suite, "timestamp", time.back() == 'Z' ? time.substr(0, time.size() - 1) : time);
    if (!check.head.host.empty()) Set(suite, "hostname", check.head.host);
    for (std::size_t i = 0; i < policy.rules.size(); ++i) AddCase(suite, name, policy.rules[i], check.results[i]);
  }
  pugi::xml_node declaration = document.prepend_child(pugi::node_declaration);
  declaration.append_attribute("version").set_value("1.0");
  declaration.append_attribute("encoding").set_value("UTF-8");
  TextWriter writer;
  document.save(writer, "  ", pugi::format_indent, pugi::encoding_utf8);
  return writer.text;
}

}  // namespace driverlist
