/// @file
/// What to do about what deserves a look, in words for people.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/record.h"

namespace inventory {

/// One sentence without its end for each rule, with the commands to type where there are some. Commands name only
/// things whose names mean themselves between double quotes in every shell: a record can come from anyone.
class NextSteps {
 public:
  /// `records` must outlive it.
  explicit NextSteps(const Records& records);

  std::string ForMalicious(const Record& service) const;
  std::string ForVulnerable(const Record& service) const;
  std::string ForInvalidSignature(const Record& service) const;
  std::string ForUnsigned(const Record& service) const;
  std::string ForListedName(const Record& service) const;
  std::string ForImageInUserFolder(const Record& service) const;
  std::string ForProblem(const Record& device) const;
  std::string ForDeviceWithoutDriver(const Record& device) const;
  std::string ForNotRunning(const Record& service) const;
  std::string ForMissingImage(const Record& service) const;
  std::string ForNoVersionOrCompany(const Record& driver) const;
  /// `older` are the places of the older copies of a driver: images and published names of packages. `newest` is its
  /// newest version.
  std::string ForSeveralVersions(const std::string& newest, const std::set<std::string>& older) const;
  std::string ForUnusedPackage(const Record& package) const;

 private:
  /// How to get rid of a service: with its package where there is one.
  std::string Removal(const Record& service) const;
  /// The OEM package that brought the service; null when none is known.
  const Record* PackageOf(const Record& service) const;

  /// OEM packages by published name and by the names of their driver files, and the published names that devices have,
  /// by the name of their service; all names in lower case.
  std::map<std::string, const Record*> m_packages;
  std::map<std::string, const Record*> m_packagesByFile;
  std::map<std::string, std::string> m_infsByService;
};

/// `command` with `name` behind it, in double quotes where needed: "sc.exe delete \"my service\"". Empty where `name`
/// could mean something else to a shell.
std::string CommandFor(std::string_view command, std::string_view name);

}  // namespace inventory
