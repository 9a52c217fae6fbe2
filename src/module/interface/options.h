/// @file
/// Options of hosts that were built with any version of the header.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "driverinventory.h"
#include "inventory/inventory.h"

namespace flat {

/// What a host asked for.
struct Wanted {
  /// Everything except the verification, whose lists are read when the collection begins.
  inventory::CollectOptions collect;
  /// Whether to verify images, and the paths of the lists in which to look them up.
  bool verify = false;
  std::vector<std::string> knownLists;
  /// Kinds, combined; 0 for all.
  std::uint32_t kinds = 0;
};

/// Reads as much of `options` as its size says; null means all zero. Throws Failure for invalid options and for options
/// that this version does not know.
Wanted ReadOptions(const driverinventory_options* options);

/// Whether records of `kind` are among `kinds`.
bool IsWanted(inventory::Kind kind, std::uint32_t kinds);

}  // namespace flat
