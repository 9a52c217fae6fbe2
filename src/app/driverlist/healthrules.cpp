#include "healthrules.h"

#include <algorithm>
#include <map>
#include <set>

#include "insertionsort.h"
#include "unicode.h"
#include "versions.h"

namespace driverlist {
namespace {

using Orvane::DriverData;
using Findings = std::vector<Finding>;

constexpr char DeviceWithoutDriver[] = "device-without-driver";
constexpr char NotRunning[] = "not-running";
constexpr char ImageMissing[] = "image-missing";
constexpr char NoVersionOrCompany[] = "no-version-or-company";
constexpr char SeveralVersions[] = "several-versions";
constexpr char UnusedPackage[] = "unused-package";

bool Contains(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool HasNoDriver(const DriverData& device) { return device.file_version == "N/A"; }

std::string FileName(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

void FindDevicesWithoutDriver(const MachineFacts& facts, Findings& findings) {
  for (const DriverData& device : facts.devices) {
    if (!HasNoDriver(device)) continue;
    const std::string maker = device.provider.empty() ? std::string() : " by " + device.provider;
    findings.push_back({DeviceWithoutDriver, device.name, device.description + maker});
  }
}

void FindNotRunning(const MachineFacts& facts, Findings& findings) {
  for (const DriverData& service : facts.services) {
    const std::string& start = service.start_type;
    const bool starts = start == "Boot Start" || start == "System Start" || start == "Automatic";
    if (!starts || service.state == "Running") continue;
    findings.push_back({NotRunning, service.name, start + ", but " + service.state + ": " + service.path});
  }
}

void FindMissingImages(const MachineFacts& facts, Findings& findings) {
  for (const MissingImage& missing : facts.missingImages) {
    const std::string configured =
        missing.configured.empty() ? "without a configured image" : "configured as " + missing.configured;
    findings.push_back({ImageMissing, missing.service, "there is no " + missing.path + ", " + configured});
  }
}

void FindNoVersionOrCompany(const MachineFacts& facts, Findings& findings) {
  for (const auto* const drivers : {&facts.devices, &facts.services}) {
    for (const DriverData& driver : *drivers) {
      if (HasNoDriver(driver) || (!driver.file_version.empty() && !driver.provider.empty())) continue;
      std::vector<std::string> missing;
      if (driver.file_version.empty()) missing.emplace_back("no version");
      if (driver.provider.empty()) missing.emplace_back("no company");
      const std::string path = driver.path.empty() ? std::string() : ": " + driver.path;
      findings.push_back({NoVersionOrCompany, driver.name, Joined(missing) + path});
    }
  }
}

/// A version of a driver and where it is.
struct Copy {
  std::string version;
  std::string place;
};

/// By file name in lower case. Packages of Windows itself have the version of their INF, which is not that of the image: only
/// OEM packages can be held against images.
std::map<std::string, std::vector<Copy>> CopiesByFile(const MachineFacts& facts) {
  std::map<std::string, std::vector<Copy>> copies;
  for (const DriverData& service : facts.services) {
    copies[LowerCase(FileName(service.path))].push_back({service.file_version, service.path});
  }
  for (const OemPackage& package : facts.packages) {
    for (const std::string& file : package.drivers) copies[LowerCase(file)].push_back({package.version, package.inf});
  }
  return copies;
}

bool AreEquivalent(const std::string& a, const std::string& b) { return !IsOlder(a, b) && !IsOlder(b, a); }

void FindSeveralVersions(const MachineFacts& facts, Findings& findings) {
  for (auto& [file, copies] : CopiesByFile(facts)) {
    std::vector<Copy> known;
    std::copy_if(copies.begin(), copies.end(), std::back_inserter(known),
                 [](const Copy& copy) { return IsKnownVersion(copy.version); });
    InsertionSort(known, [](const Copy& a, const Copy& b) { return IsOlder(a.version, b.version); });
    const auto other = std::find_if(known.begin(), known.end(), [&known](const Copy& copy) {
      return !AreEquivalent(copy.version, known.front().version);
    });
    if (other == known.end()) continue;
    std::vector<std::string> places;
    for (const Copy& copy : known) places.push_back(copy.version + " in " + copy.place);
    findings.push_back({SeveralVersions, file, Joined(places)});
  }
}

void FindUnusedPackages(const MachineFacts& facts, Findings& findings) {
  std::set<std::string> images;
  for (const DriverData& service : facts.services) images.insert(LowerCase(FileName(service.path)));
  for (const OemPackage& package : facts.packages) {
    const bool runs = std::any_of(package.drivers.begin(), package.drivers.end(),
                                  [&images](const std::string& file) { return images.count(LowerCase(file)) != 0; });
    if (runs || Contains(facts.infsInUse, package.inf)) continue;
    const std::string drivers = package.drivers.empty() ? "it lists none" : Joined(package.drivers);
    findings.push_back({UnusedPackage, package.inf,
                        package.provider + " " + package.version +
                            ": no device has it, and no service runs a driver of it (" + drivers + ")"});
  }
}

}  // namespace

const std::vector<HealthRule>& HealthRules() {
  static const std::vector<HealthRule> rules = {
      {DeviceWithoutDriver, "devices that are present and have no driver", &FindDevicesWithoutDriver},
      {NotRunning, "boot, system and automatic start drivers that do not run", &FindNotRunning},
      {ImageMissing, "services whose image is not where it is configured", &FindMissingImages},
      {NoVersionOrCompany, "drivers that do not tell their version or company", &FindNoVersionOrCompany},
      {SeveralVersions, "drivers with several versions among services and OEM packages", &FindSeveralVersions},
      {UnusedPackage, "OEM packages that no device and no service uses", &FindUnusedPackages}};
  return rules;
}

std::vector<Finding> Examine(const MachineFacts& facts) {
  Findings findings;
  for (const HealthRule& rule : HealthRules()) rule.apply(facts, findings);
  return findings;
}

}  // namespace driverlist
