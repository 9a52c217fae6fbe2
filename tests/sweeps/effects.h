/// @file
/// What a listing may lose when one of its platform calls fails, and nothing beyond that.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "faults.h"
#include "pciinfo.h"
#include "records.h"

namespace sweeps {

using Records = std::vector<test::Fields>;

/// What a listing of one source finds when no call fails.
struct Sources {
  std::vector<Orvane::PciDeviceRecord> inventory;
  Records devices;
  Records services;
  /// The OEM packages, one record per name.
  Records packages;
};

/// The records that depend on a call, by their names, and what may become of them. Of all other records, nothing may
/// change.
struct Effect {
  std::set<std::string> names;
  /// Whether they may be missing.
  bool maySkip = false;
  /// Those of them that something else gives as well, and that are therefore there in any case.
  std::set<std::string> staying;
  /// Fields of theirs that may be empty, or one of `texts`; a name or a path, the same in another letter case.
  std::set<std::string> fields;
  std::set<std::string> texts;
  /// Records that may stand in their place.
  Records instead;
  /// Files that one package lists on several disks, with the texts of that package: which of their records stays is not
  /// said, as their versions are the same.
  std::map<std::string, std::set<std::string>> twins;
  /// Records of the other sources, which show where a record of theirs is missing.
  Records elsewhere;
};

/// The effect of a failure of call number `failing` of a listing that made `calls`. Throws std::logic_error for a
/// function of which it does not know what depends on it.
Effect EffectOf(const std::vector<Call>& calls, std::size_t failing, const Sources& sources);

/// What is wrong with the list `faulty` of a listing in which a call with this effect failed, where `whole` is the list
/// without failure; empty when nothing is. In a `merged` listing, records of the other sources come to light where one
/// is missing.
std::string Complaint(const Records& whole, const Records& faulty, const Effect& effect, const Sources& sources,
                      bool merged);

}  // namespace sweeps
