#include "formats/healthformats.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "formats/rows.h"
#include "inventory/documents.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Finding;
using inventory::HealthRule;

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
std::vector<std::vector<TextCell>> Rows(const std::vector<Finding>& findings, Tone tone, std::size_t pageWidth) {
  const std::size_t room = RoomForEvidence(findings, pageWidth);
  std::vector<std::vector<TextCell>> rows;
  for (const Finding& finding : findings) {
    std::string subject = finding.subject;
    for (const std::string& piece : room > 0 ? Wrapped(finding.evidence, room) : std::vector{finding.evidence}) {
      rows.push_back({{subject, tone}, {piece}});
      subject.clear();
    }
  }
  return rows;
}

/// Days from one day to another, "2024-05-06" at their beginnings; nothing where one is no day.
std::optional<long> DaysBetween(const std::string& from, const std::string& to) {
  const auto days = [](const std::string& text) -> std::optional<long> {
    int year = 0;
    int month = 0;
    int day = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d", &year, &month, &day) != 3 || month < 1 || month > 12) {
      return std::nullopt;
    }
    // Years that begin in March end with their leap day.
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

std::string FindingsText(const std::vector<Finding>& findings, const Page& page) {
  if (findings.empty()) return "nothing found\n";
  std::string text;
  for (const HealthRule& rule : inventory::HealthRules()) {
    const std::vector<Finding> found = FindingsOf(rule, findings);
    if (found.empty()) continue;
    if (!text.empty()) text += "\n";
    if (rule.isAlarm) text += "!!! ";
    text.append(rule.name).append(" (").append(rule.meaning).append("): ");
    text += std::to_string(found.size()) + "\n";
    text += FormatRows({{"what", 24}, {"evidence", 20}},
                       Rows(found, rule.isAlarm ? Tone::Bad : Tone::Doubtful, page.width), page);
  }
  return text;
}

}  // namespace

std::string ListsText(const std::vector<trust::KnownList>& lists, const std::string& time) {
  if (lists.empty()) {
    return "there is no list of known drivers: give one with --known, or make known-drivers.json beside the program "
           "with "
           "scripts/make-known-drivers";
  }
  std::string text;
  for (const trust::KnownList& list : lists) text += (text.empty() ? "" : "; ") + ListText(list, time);
  return "looked up in " + text;
}

std::string FormatHealthTable(const std::vector<Finding>& findings, const inventory::Inventory& inventory,
                              const Page& page) {
  std::string text = FindingsText(findings, page);
  if (inventory.isVerified) text += "\n" + Visible(ListsText(inventory.lists, inventory.head.time)) + "\n";
  return text;
}

}  // namespace driverlist
