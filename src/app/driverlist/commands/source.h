/// @file
/// Where a command takes an inventory from.
#pragma once

#include <stdexcept>
#include <string>

#include "commands/options.h"
#include "inventory/inventory.h"
#include "inventory/snapshot.h"

namespace driverlist {

/// A snapshot cannot be used. what() is the sentence that says why.
struct UnusableSnapshot : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The inventory in the file at `path` (UTF-8), of any schema, as inventory::ReadSnapshot() reads it. Throws
/// UnusableSnapshot.
inventory::Inventory ReadSnapshotFile(const std::string& path, const inventory::IsSettled& isSettled = nullptr);

/// That of this machine, now, verified where the options say so. A terminal shows what is being read, if the user wants
/// that. Throws inventory::UnusableList, before anything is read of the machine.
inventory::Inventory LiveInventory(const Options& options);

/// That of the snapshot that the options name, else that of this machine. Throws UnusableSnapshot, also for a snapshot
/// of schema 1: its records lack most of what there is to show and to examine.
inventory::Inventory ChosenInventory(const Options& options);

}  // namespace driverlist
