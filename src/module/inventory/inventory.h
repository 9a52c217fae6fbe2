/// @file
/// All that is known of the drivers of one machine at one time: every service, every device, every package is one
/// record.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/head.h"
#include "inventory/record.h"
#include "inventory/verification.h"

namespace inventory {

struct Inventory {
  Head head;
  /// Services, devices, packages, chipset packages; each kind in the order of KeyOf().
  Records records;
  /// That of the documents; 1 for a snapshot whose records have only what schema1.h says.
  unsigned schema = 2;
  /// Whether the images of its services were verified, and by which lists. Not in documents but that of an examination.
  bool isVerified = false;
  std::vector<trust::KnownList> lists = {};
};

/// What a collection is about to read, as the step `done` of `total`.
struct Step {
  std::string_view what;
  std::uint64_t done;
  std::uint64_t total;
};

/// What Collect() throws when it is stopped.
struct CollectionStopped : std::runtime_error {
  CollectionStopped() : std::runtime_error("the collection was stopped") {}
};

/// What to collect, and how.
struct CollectOptions {
  /// Identifies the machine, as ThisMachine() takes it.
  std::string hostId;
  /// Called before each step; the collection stops when it is false.
  std::function<bool(const Step& step)> progress = nullptr;
  /// How to verify the images of services; nothing to leave that.
  std::optional<Verification> verification = std::nullopt;
};

/// Asks this machine: the listing library, the device inventory, and Windows for what they do not say. What cannot be
/// read is left out, with a line in the log; one call at a time in a process, since the library allows one listing at a
/// time. Devices and services are those of the first call in the process.
Inventory Collect(const CollectOptions& options);

}  // namespace inventory
