#include "formats/healthformats.h"

#include <algorithm>

#include "formats/rows.h"
#include "inventory/json.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Finding;
using inventory::HealthRule;
using inventory::Json;

std::vector<Finding> Of(const HealthRule& rule, const std::vector<Finding>& findings) {
  std::vector<Finding> found;
  std::copy_if(findings.begin(), findings.end(), std::back_inserter(found),
               [&rule](const Finding& finding) { return finding.rule == rule.name; });
  return found;
}

/// Columns of a page that `findings` leave for their evidence; 0 for any.
std::size_t RoomForEvidence(const std::vector<Finding>& findings, std::size_t pageWidth) {
  constexpr std::size_t gap = 2;
  constexpr std::size_t narrowest = 20;
  std::size_t taken = gap;
  for (const Finding& finding : findings) taken = std::max(taken, Columns(Visible(finding.subject)) + gap);
  if (pageWidth == 0) return 0;
  return pageWidth > taken + narrowest ? pageWidth - taken : narrowest;
}

/// A row per finding; evidence that is too long for the page goes on below.
std::vector<std::vector<TextCell>> Rows(const std::vector<Finding>& findings, std::size_t pageWidth) {
  const std::size_t room = RoomForEvidence(findings, pageWidth);
  std::vector<std::vector<TextCell>> rows;
  for (const Finding& finding : findings) {
    std::string subject = finding.subject;
    for (const std::string& piece : room > 0 ? Wrapped(finding.evidence, room) : std::vector{finding.evidence}) {
      rows.push_back({{subject, Tone::Doubtful}, {piece}});
      subject.clear();
    }
  }
  return rows;
}

}  // namespace

std::string FormatHealthTable(const std::vector<Finding>& findings, const Page& page) {
  if (findings.empty()) return "nothing found\n";
  std::string text;
  for (const HealthRule& rule : inventory::HealthRules()) {
    const std::vector<Finding> found = Of(rule, findings);
    if (found.empty()) continue;
    if (!text.empty()) text += "\n";
    text.append(rule.name).append(" (").append(rule.meaning).append("): ");
    text += std::to_string(found.size()) + "\n";
    text += FormatRows({{"what", 24}, {"evidence", 20}}, Rows(found, page.width), page);
  }
  return text;
}

std::string FormatHealthJson(const std::vector<Finding>& findings, const inventory::Head& head) {
  Json document = inventory::HeadJson(head);
  Json& summary = document["summary"] = Json::object();
  for (const HealthRule& rule : inventory::HealthRules()) {
    summary[std::string(rule.name)] = Of(rule, findings).size();
  }
  Json list = Json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"rule", finding.rule}, {"subject", finding.subject}, {"evidence", finding.evidence}});
  }
  document["findings"] = std::move(list);
  return inventory::JsonText(document, true) + "\n";
}

}  // namespace driverlist
