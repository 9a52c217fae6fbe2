/// @file
/// The source of the inventory that a command uses.
#pragma once

#include <stdexcept>
#include <string>

#include "commands/options.h"
#include "inventory/input.h"
#include "inventory/inventory.h"
#include "inventory/snapshot.h"

namespace driverlist {

/// A file that a command reads cannot be used. what() is the sentence that says why.
struct UnusableInput : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// What to throw for a problem of the file at `path`.
UnusableInput Unusable(const std::string& path, const inventory::InputProblem& problem);

/// Calls `read` with the content of the file at `path` (UTF-8) and returns what it returns. Throws UnusableInput where
/// that throws InputProblem.
template <typename Read>
auto ReadInputFile(const std::string& path, Read read) {
  try {
    inventory::InputFile file(path);
    return read(file);
  } catch (const inventory::InputProblem& problem) {
    throw Unusable(path, problem);
  }
}

/// The inventory in the file at `path` (UTF-8), of any schema, as inventory::ReadSnapshot() reads it. Throws
/// UnusableInput.
inventory::Inventory ReadSnapshotFile(const std::string& path, const inventory::IsSettled& isSettled = nullptr);

/// The inventory of this machine, now, verified if the options say so. A terminal shows the progress, if the user wants
/// that. Throws inventory::UnusableList before reading anything from the machine.
inventory::Inventory LiveInventory(const Options& options);

/// The inventory in the snapshot at `path`, to show or examine. Throws UnusableInput, even for a snapshot of schema 1,
/// whose records lack most of the members to show and to examine.
inventory::Inventory SnapshotInventory(const std::string& path);

/// The inventory in the snapshot that the options name, otherwise that of this machine. Throws UnusableInput.
inventory::Inventory ChosenInventory(const Options& options);

}  // namespace driverlist
