/// @file
/// Everything known about the drivers of one machine at one time: every service, every device and every package is one
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
  /// The schema version of documents; 1 for a snapshot whose records have only the members in schema1.h.
  unsigned schema = 2;
  /// Whether the images of its services were verified, and with which lists. Written only to the document of health.
  bool isVerified = false;
  std::vector<trust::KnownList> lists = {};
  /// Whether they were looked up in a list of known drivers, now or before a snapshot was written.
  bool isLookedUp = false;
};

/// What a collection is about to read: the step `done` of `total`.
struct Step {
  std::string_view what;
  std::uint64_t done;
  std::uint64_t total;
};

/// Thrown by Collect() when it is stopped.
struct CollectionStopped : std::runtime_error {
  CollectionStopped() : std::runtime_error("the collection was stopped") {}
};

/// What to collect, and how.
struct CollectOptions {
  /// The identifier of the machine, passed to ThisMachine().
  std::string hostId;
  /// Called before each step; the collection stops if it returns false.
  std::function<bool(const Step& step)> progress = nullptr;
  /// How to verify the images of services; nullopt for no verification.
  std::optional<Verification> verification = std::nullopt;
};

/// Collects the inventory of this machine from the listing library, the device inventory and, for everything else,
/// Windows. Anything that cannot be read is logged and left out. Only one call at a time is allowed in a process,
/// because the library allows only one listing at a time. Devices and services are those of the first call in the
/// process.
Inventory Collect(const CollectOptions& options);

}  // namespace inventory
