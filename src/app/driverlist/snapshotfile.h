/// @file
/// An inventory as the text of a snapshot file.
#pragma once

#include <optional>
#include <string>

#include "inventory.h"

namespace driverlist {

/// JSON, in UTF-8: see docs/driverlist.md.
std::string SnapshotText(const Inventory& inventory);

/// An inventory, or why a text is none.
struct ParsedSnapshot {
  std::optional<Inventory> inventory;
  /// What is said of the file, such as "is no snapshot of driverlist".
  std::string problem;
};

/// Reads what SnapshotText() wrote. Members that it does not know are passed over.
ParsedSnapshot ParseSnapshot(const std::string& text);

}  // namespace driverlist
