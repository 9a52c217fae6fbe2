#include "formats/html/summary.h"

#include <algorithm>
#include <array>
#include <map>

#include "formats/html/isotime.h"
#include "inventory/predicates.h"

namespace driverlist {
namespace {

using inventory::Record;
using inventory::Records;

using Predicate = bool (*)(const Record&);
using Labels = std::vector<std::string_view>;

constexpr std::size_t ProvidersShown = 8;

void Add(Group& group, const Record& record, std::size_t number) {
  group.records.push_back(number);
  group.running += inventory::IsRunning(record) ? 1 : 0;
}

void RemoveEmpty(std::vector<Group>& groups) {
  const auto end = std::remove_if(groups.begin(), groups.end(), [](const Group& group) { return group.Count() == 0; });
  groups.erase(end, groups.end());
}

/// One group per text: those of `first` in their order, then the others, largest first, then the records without a
/// text.
std::vector<Group> GroupsBy(const Records& records, Predicate isMeant, std::string Record::*text, const Labels& first) {
  std::map<std::string, Group> byText;
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (isMeant(records[i])) Add(byText[records[i].*text], records[i], i);
  }
  std::vector<Group> groups;
  Group unknown{"Unknown", {}, 0, true};
  for (auto& [label, group] : byText) {
    group.label = label.empty() ? unknown.label : label;
    group.isUnknown = label.empty();
    (group.isUnknown ? unknown : groups.emplace_back()) = group;
  }
  const auto place = [&first](const Group& group) { return std::find(first.begin(), first.end(), group.label); };
  std::stable_sort(groups.begin(), groups.end(), [&](const Group& a, const Group& b) {
    return place(a) != place(b) ? place(a) < place(b) : a.Count() > b.Count();
  });
  groups.push_back(unknown);
  RemoveEmpty(groups);
  return groups;
}

/// The largest few providers, and one group for the others.
std::vector<Group> Shortened(const std::vector<Group>& providers) {
  const auto unknown = std::find_if(providers.begin(), providers.end(), [](const Group& g) { return g.isUnknown; });
  // A line for the others saves nothing if there is only one of them.
  if (unknown - providers.begin() <= static_cast<std::ptrdiff_t>(ProvidersShown) + 1) return providers;
  const auto rest = providers.begin() + ProvidersShown;
  std::vector<Group> shown(providers.begin(), rest);
  Group others{std::to_string(unknown - rest) + " other providers"};
  std::for_each(rest, unknown, [&others](const Group& group) {
    others.records.insert(others.records.end(), group.records.begin(), group.records.end());
    others.running += group.running;
  });
  shown.push_back(others);
  shown.insert(shown.end(), unknown, providers.end());
  return shown;
}

std::vector<Group> GroupsByKind(const Records& records) {
  std::vector<Group> groups = {{"Services"}, {"Devices"}, {"Packages"}, {"Chipset packages"}};
  for (std::size_t i = 0; i < records.size(); ++i) {
    Add(groups[static_cast<std::size_t>(records[i].kind)], records[i], i);
  }
  RemoveEmpty(groups);
  return groups;
}

/// Images that are at least this many years old, but younger than those of the next group.
struct Age {
  std::string_view label;
  int fullYears;
};
constexpr std::array<Age, 5> Ages = {
    {{"Under 1 year", 0}, {"1 to 2 years", 1}, {"2 to 5 years", 2}, {"5 to 10 years", 5}, {"10 years and more", 10}}};

std::vector<Group> GroupsByAge(const Records& records, std::string_view now) {
  std::vector<Group> groups;
  // The latest time at which an image of the group can have been made.
  std::vector<std::string> times;
  for (const Age& age : Ages) {
    groups.push_back({std::string(age.label)});
    if (IsIsoTime(now)) times.push_back(YearsBefore(now, age.fullYears));
  }
  Group future{"In the future"};
  Group unknown{"No time", {}, 0, true};
  for (std::size_t i = 0; i < records.size(); ++i) {
    const Record& record = records[i];
    if (!inventory::IsService(record)) continue;
    const auto reached = std::count_if(times.begin(), times.end(),
                                       [&record](const std::string& time) { return record.image_time <= time; });
    if (times.empty() || !IsIsoTime(record.image_time)) {
      Add(unknown, record, i);
    } else {
      Add(reached == 0 ? future : groups[static_cast<std::size_t>(reached) - 1], record, i);
    }
  }
  std::vector<Group> odd = {future, unknown};
  RemoveEmpty(odd);
  groups.insert(groups.end(), odd.begin(), odd.end());
  return groups;
}

}  // namespace

Summary Summarized(const Records& records, std::string_view time) {
  const auto count = [&records](Predicate predicate) {
    return static_cast<std::size_t>(std::count_if(records.begin(), records.end(), predicate));
  };
  Summary summary;
  summary.services = count(&inventory::IsService);
  summary.runningServices = count(&inventory::IsRunning);
  summary.thirdPartyServices =
      count([](const Record& record) { return inventory::IsService(record) && inventory::IsThirdParty(record); });
  summary.devices = count(&inventory::IsDevice);
  summary.devicesWithoutDriver = count(&inventory::HasNoDriver);
  summary.devicesWithProblem = count(&inventory::HasProblem);
  summary.packages = count(&inventory::IsPackage);
  summary.oemPackages = count(&inventory::IsOemPackage);
  summary.byProvider = Shortened(GroupsBy(records, [](const Record&) { return true; }, &Record::provider, {}));
  summary.byState = GroupsBy(records, &inventory::IsService, &Record::state, {"Running", "Stopped"});
  summary.byStartType = GroupsBy(records, &inventory::IsService, &Record::start_type,
                                 {"Boot Start", "System Start", "Automatic", "Manual", "Disabled"});
  summary.byAge = GroupsByAge(records, time);
  summary.byKind = GroupsByKind(records);
  return summary;
}

}  // namespace driverlist
