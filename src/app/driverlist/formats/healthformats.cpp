#include "formats/healthformats.h"

#include <cstdio>
#include <optional>

#include "formats/evidencerows.h"
#include "formats/wrapped.h"
#include "inventory/documents.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Finding;
using inventory::HealthRule;
using inventory::Severity;

std::vector<EvidenceRow> Rows(const std::vector<Finding>& findings) {
  std::vector<EvidenceRow> rows;
  for (const Finding& finding : findings) rows.push_back({finding.subject, finding.evidence, finding.nextStep});
  return rows;
}

/// The days between two texts that begin with a day such as "2024-05-06"; nullopt if one of them does not.
std::optional<long> DaysBetween(const std::string& from, const std::string& to) {
  const auto days = [](const std::string& text) -> std::optional<long> {
    int year = 0;
    int month = 0;
    int day = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d", &year, &month, &day) != 3 || month < 1 || month > 12) {
      return std::nullopt;
    }
    // Years begin in March here, so that a leap day is the last day of its year.
    const long marchYear = month > 2 ? year : year - 1;
    return 365 * marchYear + marchYear / 4 - marchYear / 100 + marchYear / 400 + (153 * ((month + 9) % 12) + 2) / 5 +
           day;
  };
  const auto begin = days(from);
  const auto end = days(to);
  return begin && end ? std::optional<long>(*end - *begin) : std::nullopt;
}

std::string ListText(const trust::KnownList& list, const std::string& time) {
  std::string text = list.name;
  if (!list.version.empty()) text += " " + list.version;
  if (!list.date.empty()) text += " of " + list.date;
  const auto days = DaysBetween(list.date, time);
  if (days && *days >= 0) text += ", " + std::to_string(*days) + (*days == 1 ? " day old" : " days old");
  return text + " (" + std::to_string(list.entries) + (list.entries == 1 ? " entry)" : " entries)");
}

std::string Heading(const HealthRule& rule, std::size_t count) {
  std::string text = rule.severity == Severity::Critical ? "!!! " : "";
  text.append(rule.name).append(" (").append(rule.meaning).append("), ");
  return text.append(SeverityName(rule.severity)).append(": ") + std::to_string(count);
}

std::string FindingsText(const std::vector<Finding>& findings, bool isHeldAgainstBaseline, const Page& page) {
  if (findings.empty()) return isHeldAgainstBaseline ? "nothing new found\n" : "nothing found\n";
  std::string text;
  for (const HealthRule& rule : inventory::HealthRules()) {
    const std::vector<Finding> found = FindingsOf(rule, findings);
    if (found.empty()) continue;
    if (!text.empty()) text += "\n";
    text += Paragraph(Heading(rule, found.size()), page.width);
    text += FormatEvidence(Rows(found), ToneOf(rule.severity), page);
  }
  return text;
}

}  // namespace

std::string ListsText(const std::vector<trust::KnownList>& lists, const std::string& time) {
  if (lists.empty()) {
    return "there is no list of known drivers: give one with --known, or make known-drivers.json next to the program "
           "with scripts/make-known-drivers";
  }
  std::string text;
  for (const trust::KnownList& list : lists) text += (text.empty() ? "" : "; ") + ListText(list, time);
  return "looked up in " + text;
}

std::string HidingText(const inventory::Hiding& hiding) {
  const std::string count = hiding.hidden == 1 ? "1 finding is" : std::to_string(hiding.hidden) + " findings are";
  return count + " hidden by the baseline" + (hiding.baseline.time.empty() ? "" : " of " + hiding.baseline.time);
}

Table FindingsTable(const std::vector<Finding>& findings) {
  Table table;
  for (const std::string_view name : {"rule", "severity", "id", "subject", "evidence", "next_step"}) {
    inventory::Column& column = table.columns.emplace_back();
    column.name = column.label = name;
  }
  for (const Finding& finding : findings) {
    std::vector<Cell>& row = table.rows.emplace_back();
    for (const std::string& text : {finding.rule, std::string(SeverityName(finding.severity)), finding.id,
                                    finding.subject, finding.evidence, finding.nextStep}) {
      row.push_back({text});
    }
  }
  return table;
}

std::string FormatHealthTable(const std::vector<Finding>& findings, const inventory::Inventory& inventory,
                              const Page& page, const std::optional<inventory::Hiding>& hiding) {
  std::string text = FindingsText(findings, hiding.has_value(), page);
  if (hiding) text += "\n" + Paragraph(HidingText(*hiding), page.width);
  if (inventory.isVerified) text += "\n" + Paragraph(ListsText(inventory.lists, inventory.head.time), page.width);
  return text;
}

}  // namespace driverlist
