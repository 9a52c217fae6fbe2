/// @file
/// Options as hosts of any age pass them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "driverinventory.h"
#include "inventory/inventory.h"

namespace flat {

/// What a host asked for.
struct Wanted {
  /// All but the verification, whose lists are read when the collection begins.
  inventory::CollectOptions collect;
  /// Whether to verify images, and paths of the lists to look them up in.
  bool verify = false;
  std::vector<std::string> knownLists;
  /// Kinds, combined; 0 for all.
  std::uint32_t kinds = 0;
};

/// Reads as much of `options` as its size says; null is all zero. Throws Failure for what makes no sense and for what
/// this version does not know.
Wanted ReadOptions(const driverinventory_options* options);

/// Whether records of `kind` are among `kinds`.
bool IsWanted(inventory::Kind kind, std::uint32_t kinds);

}  // namespace flat
