#include "formats/html/htmlfindings.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "formats/html/findingrecords.h"
#include "formats/html/htmltable.h"
#include "formats/html/htmltext.h"
#include "formats/html/linebreaks.h"

namespace driverlist {
namespace {

using inventory::Finding;
using Findings = std::vector<const Finding*>;

/// The findings grouped by rule, the most severe first.
std::vector<Findings> ByRule(const std::vector<Finding>& findings) {
  std::vector<Findings> rules;
  for (const Finding& finding : findings) {
    const auto rule = std::find_if(rules.begin(), rules.end(),
                                   [&finding](const Findings& of) { return of.front()->rule == finding.rule; });
    (rule == rules.end() ? rules.emplace_back() : *rule).push_back(&finding);
  }
  std::stable_sort(rules.begin(), rules.end(),
                   [](const Findings& a, const Findings& b) { return a.front()->severity < b.front()->severity; });
  return rules;
}

/// What the rule of `finding` looks for.
std::string MeaningOf(const Finding& finding) {
  const inventory::HealthRule* const rule = inventory::FindHealthRule(finding.rule);
  return rule == nullptr ? finding.rule : Capitalized(std::string(rule->meaning));
}

std::string SubjectHtml(const Finding& finding, const FindingRecords& records) {
  const std::vector<std::size_t> rows = records.Of(finding);
  const std::string subject = Breakable(finding.subject);
  return rows.empty() ? subject : "<a" + Attribute("href", "#" + RowId(rows.front())) + ">" + subject + "</a>";
}

std::string FindingHtml(const Finding& finding, const FindingRecords& records) {
  std::string html = Element("dt", "", SubjectHtml(finding, records));
  html += Element("dd", "", Breakable(finding.evidence));
  if (!finding.nextStep.empty()) html += Element("dd", "next", Breakable(Capitalized(finding.nextStep)) + ".");
  return Element("div", "", html) + "\n";
}

/// The first few subjects, for the line of the rule.
std::string SubjectsHtml(const Findings& findings) {
  constexpr std::size_t most = 12;
  std::string subjects;
  for (std::size_t i = 0; i < findings.size() && i < most; ++i) {
    subjects += (i == 0 ? "" : ", ") + HtmlText(findings[i]->subject);
  }
  return subjects + (findings.size() > most ? ", \u2026" : "");
}

std::string RuleHtml(const Findings& findings, const FindingRecords& records) {
  const Finding& first = *findings.front();
  const std::string severity(SeverityName(first.severity));
  const std::string line =
      Element("span", "severity", severity) + " " + Element("span", "count", std::to_string(findings.size())) + " " +
      Element("span", "label", HtmlText(MeaningOf(first))) + " " + Element("span", "subjects", SubjectsHtml(findings));
  std::string found;
  for (const Finding* const finding : findings) found += FindingHtml(*finding, records);
  return Element("li", severity,
                 Element("details", "", Element("summary", "", line) + "\n" + Element("dl", "", "\n" + found))) +
         "\n";
}

/// The rows that the findings are about.
Group GroupOf(const Findings& findings, const FindingRecords& records) {
  std::set<std::size_t> rows;
  for (const Finding* const finding : findings) {
    for (const std::size_t row : records.Of(*finding)) rows.insert(row);
  }
  return {MeaningOf(*findings.front()), {rows.begin(), rows.end()}};
}

std::string Counted(std::size_t findings) {
  return std::to_string(findings) + (findings == 1 ? " finding" : " findings");
}

}  // namespace

FindingsSection::FindingsSection(const std::vector<Finding>& findings, const inventory::Records& records,
                                 const std::vector<std::string>& notes)
    : facet{"Finding", {}} {
  const FindingRecords index(records);
  std::string rules;
  for (const Findings& ofRule : ByRule(findings)) {
    rules += RuleHtml(ofRule, index);
    facet.groups.push_back(GroupOf(ofRule, index));
  }
  html = "<section class=\"page findings\" aria-labelledby=\"findings\">\n<h2 id=\"findings\">What deserves a look " +
         Element("small", "", findings.empty() ? "nothing found" : Counted(findings.size())) + "</h2>\n";
  if (!rules.empty()) html += "<ul class=\"rules\" role=\"list\" data-facet=\"Finding\">\n" + rules + "</ul>\n";
  for (const std::string& note : notes) html += Element("p", "note", HtmlText(Capitalized(note)) + ".") + "\n";
  html += "</section>\n";
}

}  // namespace driverlist
