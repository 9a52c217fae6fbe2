#include "inventory/healthrules.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "inventory/filenames.h"
#include "inventory/findingidentity.h"
#include "inventory/nextsteps.h"
#include "inventory/predicates.h"
#include "inventory/problems.h"
#include "inventory/systemfolders.h"
#include "inventory/versionkey.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

using Discoveries = std::vector<Discovery>;
using Texts = std::vector<std::string>;

std::string Joined(const Texts& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

// --- Images that were verified

/// "C:\\net.sys, signed by Maker (valid), SHA-256 12ab"
std::string ImageText(const Record& service) {
  std::string text = service.path;
  if (!service.signer.empty()) text += ", signed by " + service.signer + " (" + service.signature + ")";
  return service.sha256.empty() ? text : text + ", SHA-256 " + service.sha256;
}

/// "listed by LOLDrivers as evil.sys (1234), file-hash, CVE-2024-1"
std::string MatchText(const trust::KnownMatch& match) {
  std::string text =
      "listed by " + match.list + " as " + (match.name.empty() ? "" : match.name + " ") + "(" + match.entry + "), ";
  text += trust::NameOf(match.kind);
  for (const std::string& cve : match.cves) text += ", " + cve;
  return text;
}

std::string MatchesText(const Record& service) {
  std::string text;
  for (const trust::KnownMatch& match : service.known) {
    // If the image itself is listed, a match by name adds nothing.
    if (IsListed(match) || HasListedName(service)) text += (text.empty() ? "" : "; ") + MatchText(match);
  }
  return text;
}

/// The state that identifies a finding about an image that was read.
Texts VerifiedState(const Record& service) { return {service.service, service.path, service.sha256}; }

/// The state that identifies a finding about an image, whether it was read or not.
Texts ImageState(const Record& service) {
  return {service.service, service.path, service.version, service.size ? std::to_string(*service.size) : std::string()};
}

/// The code in "The digest is wrong. (0x80096010)": the words before it are in the language of the machine.
std::string CodeOf(const std::string& problem) {
  const std::size_t begin = problem.rfind("(0x");
  return begin == std::string::npos ? problem : problem.substr(begin);
}

using NextStep = std::string (NextSteps::*)(const Record&) const;

template <bool (*Predicate)(const Record&), NextStep Step>
Discoveries FindKnown(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& service : records) {
    if (!Predicate(service)) continue;
    found.push_back({service.service, MatchesText(service) + ": " + ImageText(service), (steps.*Step)(service),
                     VerifiedState(service)});
  }
  return found;
}

Discoveries FindInvalidSignatures(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& service : records) {
    if (!HasInvalidSignature(service)) continue;
    Texts state = VerifiedState(service);
    state.push_back(CodeOf(service.signature_problem));
    found.push_back({service.service, service.signature_problem + ": " + ImageText(service),
                     steps.ForInvalidSignature(service), std::move(state)});
  }
  return found;
}

Discoveries FindUnsigned(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& service : records) {
    if (!IsUnsigned(service)) continue;
    found.push_back({service.service, ImageText(service), steps.ForUnsigned(service), VerifiedState(service)});
  }
  return found;
}

Discoveries FindImagesInUserFolders(const Records& records, const NextSteps& steps) {
  Discoveries found;
  const SystemFolders folders(records);
  for (const Record& service : records) {
    if (!IsService(service) || IsImageMissing(service) || folders.Hold(service.path)) continue;
    found.push_back({service.service, ImageText(service), steps.ForImageInUserFolder(service), ImageState(service)});
  }
  return found;
}

// --- Devices, services and packages

std::string ProblemText(const Record& device) {
  const std::string name(ProblemName(*device.problem_code));
  return "problem " + std::to_string(*device.problem_code) + (name.empty() ? "" : " (" + name + ")");
}

std::string DeviceText(const Record& device) {
  const std::string text = device.description.empty() ? device.identity : device.description;
  return device.provider.empty() ? text : text + " by " + device.provider;
}

/// What identifies a device.
const std::string& IdentityOf(const Record& device) {
  return device.instance_id.empty() ? device.name : device.instance_id;
}

Discoveries FindDeviceProblems(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& device : records) {
    if (!HasProblem(device)) continue;
    found.push_back({device.name,
                     ProblemText(device) + ": " + DeviceText(device),
                     steps.ForProblem(device),
                     {IdentityOf(device), std::to_string(*device.problem_code)}});
  }
  return found;
}

/// The files of a package that a service can load.
Texts DriverFiles(const Record& package) {
  Texts drivers;
  std::copy_if(package.files.begin(), package.files.end(), std::back_inserter(drivers), &IsDriverFile);
  return drivers;
}

Discoveries FindDevicesWithoutDriver(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& device : records) {
    if (!HasNoDriver(device)) continue;
    found.push_back({device.name,
                     DeviceText(device) + (HasProblem(device) ? ", " + ProblemText(device) : std::string()),
                     steps.ForDeviceWithoutDriver(device),
                     {IdentityOf(device)}});
  }
  return found;
}

Discoveries FindNotRunning(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& service : records) {
    if (!StartsByItself(service) || IsRunning(service)) continue;
    const std::string state = service.state.empty() ? "in an unknown state" : service.state;
    found.push_back({service.service,
                     service.start_type + ", but " + state + ": " + service.path,
                     steps.ForNotRunning(service),
                     {service.service}});
  }
  return found;
}

Discoveries FindMissingImages(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& service : records) {
    if (!IsImageMissing(service)) continue;
    found.push_back({service.service,
                     "the configured image " + service.path + " does not exist",
                     steps.ForMissingImage(service),
                     {service.service, service.path}});
  }
  return found;
}

/// Whether the record has a driver, which could state a version and a company.
bool HasDriver(const Record& record) {
  return (IsService(record) && !IsImageMissing(record)) || (IsDevice(record) && !HasNoDriver(record));
}

Discoveries FindNoVersionOrCompany(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const Record& driver : records) {
    if (!HasDriver(driver)) continue;
    Texts missing;
    if (!IsKnownVersion(driver.version)) missing.emplace_back("no version");
    if (driver.provider.empty()) missing.emplace_back("no company");
    if (missing.empty()) continue;
    const bool isService = IsService(driver);
    Texts state = isService ? ImageState(driver) : Texts{IdentityOf(driver), driver.inf, driver.version};
    state.push_back(Joined(missing));
    found.push_back({isService ? driver.service : driver.name,
                     Joined(missing) + ": " + (isService ? driver.path : driver.inf),
                     steps.ForNoVersionOrCompany(driver), std::move(state)});
  }
  return found;
}

/// A version and where it was found; ordered by version.
struct Copy {
  std::string key;
  std::string version;
  std::string place;

  bool operator<(const Copy& other) const {
    return std::tie(key, version, place) < std::tie(other.key, other.version, other.place);
  }
};

using Copies = std::map<std::string, std::set<Copy>>;

void AddCopy(Copies& copies, const std::string& file, const std::string& version, const std::string& place) {
  if (IsKnownVersion(version)) copies[FileKey(file)].insert({VersionKey(version), version, place});
}

/// All copies of each driver, by file name. A package that came with Windows has the version of its INF, not of the
/// image, so only OEM packages can be compared with images.
Copies CopiesByFile(const Records& records) {
  Copies copies;
  for (const Record& record : records) {
    if (IsService(record)) AddCopy(copies, record.path, record.version, record.path);
    if (!IsOemPackage(record)) continue;
    for (const std::string& file : DriverFiles(record)) AddCopy(copies, file, record.version, record.inf);
  }
  return copies;
}

Discoveries FindSeveralVersions(const Records& records, const NextSteps& steps) {
  Discoveries found;
  for (const auto& [file, copies] : CopiesByFile(records)) {
    const Copy& newest = *copies.rbegin();
    if (copies.begin()->key == newest.key) continue;
    Texts places;
    std::set<std::string> older;
    for (const Copy& copy : copies) {
      places.push_back(copy.version + " in " + copy.place);
      if (copy.key != newest.key) older.insert(copy.place);
    }
    Texts state = places;
    state.push_back(file);
    found.push_back({file, Joined(places), steps.ForSeveralVersions(newest.version, older), std::move(state)});
  }
  return found;
}

std::set<std::string> ImageFiles(const Records& records) {
  std::set<std::string> images;
  for (const Record& record : records) {
    if (IsService(record)) images.insert(FileKey(record.path));
  }
  return images;
}

Discoveries FindUnusedPackages(const Records& records, const NextSteps& steps) {
  Discoveries found;
  const std::set<std::string> images = ImageFiles(records);
  const auto isLoaded = [&images](const std::string& file) { return images.count(FileKey(file)) != 0; };
  for (const Record& package : records) {
    if (!IsOemPackage(package) || package.devices_using != 0u) continue;
    if (std::any_of(package.files.begin(), package.files.end(), isLoaded)) continue;
    const Texts drivers = DriverFiles(package);
    Texts names = {package.provider, package.version};
    if (Orvane::LowerCase(package.original_inf) != Orvane::LowerCase(package.inf))
      names.insert(names.begin(), package.original_inf);
    names.erase(std::remove(names.begin(), names.end(), std::string()), names.end());
    found.push_back({package.inf,
                     Joined(names) + (names.empty() ? "" : ": ") +
                         "no device uses it, and no service loads any of its files (" +
                         (drivers.empty() ? "it lists no .sys file" : Joined(drivers)) + ")",
                     steps.ForUnusedPackage(package),
                     {package.inf, package.original_inf, package.provider, package.version}});
  }
  return found;
}

constexpr std::array<HealthRule, 13> Rules = {
    {{"known-malicious", "images listed as malicious", Severity::Critical,
      &FindKnown<&IsKnownMalicious, &NextSteps::ForMalicious>, true},
     {"known-vulnerable", "images listed as vulnerable", Severity::High,
      &FindKnown<&IsKnownVulnerable, &NextSteps::ForVulnerable>, true},
     {"signature-invalid", "images whose signature is not valid", Severity::High, &FindInvalidSignatures, true},
     {"unsigned", "images without a signature", Severity::High, &FindUnsigned, true},
     {"listed-name", "images with the name and version of a listed driver, but a different file", Severity::Medium,
      &FindKnown<&HasListedName, &NextSteps::ForListedName>, true},
     {"image-in-user-folder", "images outside the Windows and program folders", Severity::High,
      &FindImagesInUserFolders},
     {"device-problem", "devices for which Windows reports a problem", Severity::Medium, &FindDeviceProblems},
     {"device-without-driver", "devices that are present and have no driver", Severity::Medium,
      &FindDevicesWithoutDriver},
     {"not-running", "boot, system and automatic start services that are not running", Severity::Medium,
      &FindNotRunning},
     {"image-missing", "services whose configured image does not exist", Severity::Medium, &FindMissingImages},
     {"no-version-or-company", "drivers without a version or a company", Severity::Low, &FindNoVersionOrCompany},
     {"several-versions", "drivers with several versions among services and OEM packages", Severity::Low,
      &FindSeveralVersions},
     {"unused-package", "OEM packages that no device and no service uses", Severity::Low, &FindUnusedPackages}}};

}  // namespace

const std::array<HealthRule, 13>& HealthRules() { return Rules; }

const HealthRule* FindHealthRule(std::string_view name) {
  const auto found =
      std::find_if(Rules.begin(), Rules.end(), [name](const HealthRule& rule) { return rule.name == name; });
  return found == Rules.end() ? nullptr : &*found;
}

std::vector<Finding> Examine(const Records& records) {
  const NextSteps steps(records);
  FindingIdentities identities;
  std::vector<Finding> findings;
  for (const HealthRule& rule : Rules) {
    for (Discovery& found : rule.find(records, steps)) {
      findings.push_back({std::string(rule.name), std::move(found.subject), std::move(found.evidence), rule.severity,
                          std::move(found.nextStep), identities.Next(rule.name, found.state)});
    }
  }
  return findings;
}

}  // namespace inventory
