#include "inventory/healthrules.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "inventory/filenames.h"
#include "inventory/predicates.h"
#include "inventory/problems.h"
#include "inventory/systemfolders.h"
#include "inventory/versionkey.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

using Findings = std::vector<Finding>;
using Texts = std::vector<std::string>;

constexpr std::string_view KnownMalicious = "known-malicious";
constexpr std::string_view KnownVulnerable = "known-vulnerable";
constexpr std::string_view SignatureInvalid = "signature-invalid";
constexpr std::string_view Unsigned = "unsigned";
constexpr std::string_view ListedName = "listed-name";
constexpr std::string_view ImageInUserFolder = "image-in-user-folder";
constexpr std::string_view DeviceProblem = "device-problem";
constexpr std::string_view DeviceWithoutDriver = "device-without-driver";
constexpr std::string_view NotRunning = "not-running";
constexpr std::string_view ImageMissing = "image-missing";
constexpr std::string_view NoVersionOrCompany = "no-version-or-company";
constexpr std::string_view SeveralVersions = "several-versions";
constexpr std::string_view UnusedPackage = "unused-package";

void Add(Findings& findings, std::string_view rule, const std::string& subject, const std::string& evidence) {
  findings.push_back({std::string(rule), subject, evidence});
}

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
    // Beside the image itself, its name says nothing.
    if (IsListed(match) || HasListedName(service)) text += (text.empty() ? "" : "; ") + MatchText(match);
  }
  return text;
}

template <bool (*Predicate)(const Record&), const std::string_view& Rule>
void FindKnown(const Records& records, Findings& findings) {
  for (const Record& service : records) {
    if (Predicate(service)) Add(findings, Rule, service.service, MatchesText(service) + ": " + ImageText(service));
  }
}

void FindInvalidSignatures(const Records& records, Findings& findings) {
  for (const Record& service : records) {
    if (!HasInvalidSignature(service)) continue;
    Add(findings, SignatureInvalid, service.service, service.signature_problem + ": " + ImageText(service));
  }
}

void FindUnsigned(const Records& records, Findings& findings) {
  for (const Record& service : records) {
    if (IsUnsigned(service)) Add(findings, Unsigned, service.service, ImageText(service));
  }
}

void FindImagesInUserFolders(const Records& records, Findings& findings) {
  const SystemFolders folders(records);
  for (const Record& service : records) {
    if (!IsService(service) || IsImageMissing(service) || folders.Hold(service.path)) continue;
    Add(findings, ImageInUserFolder, service.service, ImageText(service));
  }
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

void FindDeviceProblems(const Records& records, Findings& findings) {
  for (const Record& device : records) {
    if (HasProblem(device)) Add(findings, DeviceProblem, device.name, ProblemText(device) + ": " + DeviceText(device));
  }
}

/// Those of a package's files that a service can load.
Texts DriverFiles(const Record& package) {
  Texts drivers;
  std::copy_if(package.files.begin(), package.files.end(), std::back_inserter(drivers), &IsDriverFile);
  return drivers;
}

void FindDevicesWithoutDriver(const Records& records, Findings& findings) {
  for (const Record& device : records) {
    if (!HasNoDriver(device)) continue;
    Add(findings, DeviceWithoutDriver, device.name,
        DeviceText(device) + (HasProblem(device) ? ", " + ProblemText(device) : std::string()));
  }
}

void FindNotRunning(const Records& records, Findings& findings) {
  for (const Record& service : records) {
    if (!StartsByItself(service) || IsRunning(service)) continue;
    const std::string state = service.state.empty() ? "in an unknown state" : service.state;
    Add(findings, NotRunning, service.service, service.start_type + ", but " + state + ": " + service.path);
  }
}

void FindMissingImages(const Records& records, Findings& findings) {
  for (const Record& service : records) {
    if (!IsImageMissing(service)) continue;
    Add(findings, ImageMissing, service.service,
        "there is no " + service.path + ", where the service's configuration expects its image");
  }
}

/// Whether there is a driver that could say its version and company.
bool HasDriver(const Record& record) {
  return (IsService(record) && !IsImageMissing(record)) || (IsDevice(record) && !HasNoDriver(record));
}

void FindNoVersionOrCompany(const Records& records, Findings& findings) {
  for (const Record& driver : records) {
    if (!HasDriver(driver)) continue;
    Texts missing;
    if (!IsKnownVersion(driver.version)) missing.emplace_back("no version");
    if (driver.provider.empty()) missing.emplace_back("no company");
    if (missing.empty()) continue;
    Add(findings, NoVersionOrCompany, IsService(driver) ? driver.service : driver.name,
        Joined(missing) + ": " + (IsService(driver) ? driver.path : driver.inf));
  }
}

/// A version and a place where it is, in the order of versions.
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

/// By file name. A package that came with Windows has the version of its INF, which is not that of the image: only OEM
/// packages can be held against images.
Copies CopiesByFile(const Records& records) {
  Copies copies;
  for (const Record& record : records) {
    if (IsService(record)) AddCopy(copies, record.path, record.version, record.path);
    if (!IsOemPackage(record)) continue;
    for (const std::string& file : DriverFiles(record)) AddCopy(copies, file, record.version, record.inf);
  }
  return copies;
}

void FindSeveralVersions(const Records& records, Findings& findings) {
  for (const auto& [file, copies] : CopiesByFile(records)) {
    if (copies.begin()->key == copies.rbegin()->key) continue;
    Texts places;
    for (const Copy& copy : copies) places.push_back(copy.version + " in " + copy.place);
    Add(findings, SeveralVersions, file, Joined(places));
  }
}

std::set<std::string> ImageFiles(const Records& records) {
  std::set<std::string> images;
  for (const Record& record : records) {
    if (IsService(record)) images.insert(FileKey(record.path));
  }
  return images;
}

void FindUnusedPackages(const Records& records, Findings& findings) {
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
    Add(findings, UnusedPackage, package.inf,
        Joined(names) + (names.empty() ? "" : ": ") + "no device uses it, and no service loads a file of it (" +
            (drivers.empty() ? "it lists no .sys file" : Joined(drivers)) + ")");
  }
}

constexpr std::array<HealthRule, 13> Rules = {
    {{KnownMalicious, "images that a list knows as malicious", &FindKnown<&IsKnownMalicious, KnownMalicious>, true},
     {KnownVulnerable, "images that a list knows as vulnerable", &FindKnown<&IsKnownVulnerable, KnownVulnerable>},
     {SignatureInvalid, "images with a signature that does not hold", &FindInvalidSignatures},
     {Unsigned, "images without a signature", &FindUnsigned},
     {ListedName, "images with the name and version of a listed driver, but not that file",
      &FindKnown<&HasListedName, ListedName>},
     {ImageInUserFolder, "images outside the folders of Windows and of programs", &FindImagesInUserFolders},
     {DeviceProblem, "devices for which Windows reports a problem", &FindDeviceProblems},
     {DeviceWithoutDriver, "devices that are present and have no driver", &FindDevicesWithoutDriver},
     {NotRunning, "boot, system and automatic start services that do not run", &FindNotRunning},
     {ImageMissing, "services whose image is not where their configuration expects it", &FindMissingImages},
     {NoVersionOrCompany, "drivers without a version or a company", &FindNoVersionOrCompany},
     {SeveralVersions, "drivers of which services and OEM packages have several versions", &FindSeveralVersions},
     {UnusedPackage, "OEM packages that no device and no service uses", &FindUnusedPackages}}};

}  // namespace

const std::array<HealthRule, 13>& HealthRules() { return Rules; }

std::vector<Finding> Examine(const Records& records) {
  Findings findings;
  for (const HealthRule& rule : Rules) rule.apply(records, findings);
  return findings;
}

}  // namespace inventory
