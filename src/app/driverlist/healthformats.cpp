#include "healthformats.h"

#include <algorithm>

#include "jsonvalues.h"
#include "unicode.h"

namespace driverlist {
namespace {

std::vector<Finding> Of(const HealthRule& rule, const std::vector<Finding>& findings) {
  std::vector<Finding> found;
  std::copy_if(findings.begin(), findings.end(), std::back_inserter(found),
               [&rule](const Finding& finding) { return finding.rule == rule.name; });
  return found;
}

/// A row per finding; evidence that is too long for the page goes on below.
std::vector<std::vector<Cell>> Rows(const std::vector<Finding>& findings, std::size_t width) {
  std::size_t subjects = 0;
  for (const Finding& finding : findings) subjects = std::max(subjects, Columns(finding.subject));
  constexpr std::size_t gap = 2;
  constexpr std::size_t narrowest = 20;
  const std::size_t taken = subjects + gap;
  const std::size_t room = width > taken + narrowest ? width - taken : narrowest;
  std::vector<std::vector<Cell>> rows;
  for (const Finding& finding : findings) {
    std::string subject = finding.subject;
    for (const std::string& piece : width > 0 ? Wrapped(finding.evidence, room) : std::vector{finding.evidence}) {
      rows.push_back({{subject, Colour::Yellow}, {piece}});
      subject.clear();
    }
  }
  return rows;
}

}  // namespace

std::string FormatHealthTable(const std::vector<Finding>& findings, const Page& page) {
  if (findings.empty()) return "nothing found\n";
  std::string text;
  for (const HealthRule& rule : HealthRules()) {
    const std::vector<Finding> found = Of(rule, findings);
    if (found.empty()) continue;
    if (!text.empty()) text += "\n";
    text += rule.name + " (" + rule.meaning + "): " + std::to_string(found.size()) + "\n";
    text += FormatRows({{"what", 24}, {"evidence", 20}}, Rows(found, page.width), page);
  }
  return text;
}

std::string FormatHealthJson(const std::vector<Finding>& findings, const HealthContext& context) {
  Json summary = Json::object();
  for (const HealthRule& rule : HealthRules()) summary[rule.name] = Of(rule, findings).size();
  Json list = Json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"rule", finding.rule}, {"subject", finding.subject}, {"evidence", finding.evidence}});
  }
  const Json document = {{"schema_version", 1},          {"host", context.host}, {"windows", context.windows},
                         {"tool_version", context.tool}, {"time", context.time}, {"summary", std::move(summary)},
                         {"findings", std::move(list)}};
  return JsonText(document, true) + "\n";
}

}  // namespace driverlist
