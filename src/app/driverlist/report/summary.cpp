#include "summary.h"

#include <algorithm>
#include <map>
#include <optional>

#include "imagedate.h"
#include "unicode.h"

namespace driverlist {
namespace {

using Orvane::DriverData;

constexpr std::size_t ProvidersShown = 8;

bool Runs(const DriverData& driver) { return driver.state == "Running"; }
bool IsService(const DriverData& driver) { return !driver.state.empty() || !driver.start_type.empty(); }

bool IsDeviceWithoutDriver(const DriverData& driver) {
  constexpr std::string_view ending = "_nodriver#";
  const std::string& name = driver.name;
  return name.size() >= ending.size() && name.compare(name.size() - ending.size(), ending.size(), ending) == 0;
}

void Add(Group& group, const DriverData& driver) {
  ++group.drivers;
  group.running += Runs(driver) ? 1 : 0;
}

void RemoveEmpty(std::vector<Group>& groups) {
  const auto end = std::remove_if(groups.begin(), groups.end(), [](const Group& group) { return group.drivers == 0; });
  groups.erase(end, groups.end());
}

/// One group per label, in their order, and one for every other driver behind them.
std::vector<Group> Groups(const std::vector<std::string>& labels, const std::string& rest) {
  std::vector<Group> groups;
  for (const std::string& label : labels) groups.push_back({label});
  groups.push_back({rest});
  return groups;
}

Group& GroupOf(std::vector<Group>& groups, const std::string& label) {
  const auto found = std::find_if(groups.begin(), groups.end() - 1, [&](const Group& g) { return g.label == label; });
  return *found;
}

std::vector<Group> ProviderGroups(const std::vector<DriverData>& drivers) {
  std::map<std::string, Group> byText;
  for (const DriverData& driver : drivers) Add(byText[driver.provider], driver);
  std::vector<Group> groups;
  for (auto& [provider, group] : byText) {
    if (provider.empty()) continue;
    group.label = Utf8FromAnsi(provider);
    groups.push_back(group);
  }
  std::stable_sort(groups.begin(), groups.end(), [](const Group& a, const Group& b) { return a.drivers > b.drivers; });
  return groups;
}

/// The first few of `providers`, and the others in one.
std::vector<Group> Shortened(const std::vector<Group>& providers) {
  // One line for the others saves nothing when there is but one of them.
  if (providers.size() <= ProvidersShown + 1) return providers;
  const auto rest = providers.begin() + ProvidersShown;
  std::vector<Group> shown(providers.begin(), rest);
  Group others{std::to_string(providers.end() - rest) + " other providers"};
  std::for_each(rest, providers.end(), [&others](const Group& group) {
    others.drivers += group.drivers;
    others.running += group.running;
  });
  shown.push_back(others);
  return shown;
}

Group UnknownProvider(const std::vector<DriverData>& drivers) {
  Group unknown{"Unknown", 0, 0, true};
  for (const DriverData& driver : drivers) {
    if (driver.provider.empty()) Add(unknown, driver);
  }
  return unknown;
}

std::vector<Group> StateGroups(const std::vector<DriverData>& drivers) {
  std::vector<Group> groups = Groups({"Running", "Stopped"}, "Other state");
  Group noService{"Not a service", 0, 0, true};
  for (const DriverData& driver : drivers) Add(IsService(driver) ? GroupOf(groups, driver.state) : noService, driver);
  groups.push_back(noService);
  RemoveEmpty(groups);
  return groups;
}

std::vector<Group> StartTypeGroups(const std::vector<DriverData>& drivers) {
  std::vector<Group> groups =
      Groups({"Boot Start", "System Start", "Automatic", "Manual", "Disabled"}, "Other start type");
  for (const DriverData& driver : drivers) {
    if (IsService(driver)) Add(GroupOf(groups, driver.start_type), driver);
  }
  RemoveEmpty(groups);
  return groups;
}

class AgeGroups {
 public:
  explicit AgeGroups(std::string_view time) : m_today(ParseIsoDay(time)) {}

  void Add(const DriverData& driver) { driverlist::Add(GroupOf(driver), driver); }

  std::vector<Group> Take() {
    std::vector<Group> groups;
    for (Age& age : m_ages) groups.push_back(std::move(age.group));
    std::vector<Group> odd = {m_future, m_unknown};
    RemoveEmpty(odd);
    groups.insert(groups.end(), odd.begin(), odd.end());
    return groups;
  }

 private:
  struct Age {
    int fullYears;
    Group group;
  };

  Group& GroupOf(const DriverData& driver) {
    const std::optional<ImageDate> date = ParseImageDate(driver.date);
    if (!date || !m_today) return m_unknown;
    const long day = DayNumber(date->day);
    // Dates are of the machine's zone, the time of the report is of Greenwich: they may be a day apart.
    if (day > DayNumber(*m_today) + 1) return m_future;
    const auto reached = [&](const Age& age) {
      return day <= DayNumber({m_today->year - age.fullYears, m_today->month, m_today->day});
    };
    const auto oldest = std::find_if(m_ages.rbegin(), m_ages.rend() - 1, reached);
    return oldest->group;
  }

  std::optional<Day> m_today;
  std::vector<Age> m_ages = {{0, {"Under 1 year"}},
                             {1, {"1 to 2 years"}},
                             {2, {"2 to 5 years"}},
                             {5, {"5 to 10 years"}},
                             {10, {"10 years and more"}}};
  Group m_future{"In the future"};
  Group m_unknown{"No date", 0, 0, true};
};

std::vector<Group> GroupsByAge(const std::vector<DriverData>& drivers, std::string_view time) {
  AgeGroups ages(time);
  for (const DriverData& driver : drivers) ages.Add(driver);
  return ages.Take();
}

}  // namespace

Summary Summarized(const std::vector<DriverData>& drivers, std::string_view time) {
  const auto count = [&drivers](bool (*predicate)(const DriverData&)) {
    return static_cast<std::size_t>(std::count_if(drivers.begin(), drivers.end(), predicate));
  };
  const std::vector<Group> providers = ProviderGroups(drivers);
  Summary summary;
  summary.drivers = drivers.size();
  summary.services = count(IsService);
  summary.running = count(Runs);
  summary.devicesWithoutDriver = count(IsDeviceWithoutDriver);
  summary.providers = providers.size();
  summary.byProvider = Shortened(providers);
  summary.byProvider.push_back(UnknownProvider(drivers));
  RemoveEmpty(summary.byProvider);
  summary.byState = StateGroups(drivers);
  summary.byStartType = StartTypeGroups(drivers);
  summary.byAge = GroupsByAge(drivers, time);
  return summary;
}

}  // namespace driverlist
