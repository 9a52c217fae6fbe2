/// @file
/// Verifies the images of an inventory's services.
#pragma once

#include <cstddef>
#include <functional>

#include "inventory/record.h"
#include "trust/knowndrivers.h"

namespace inventory {

struct Verification {
  /// The lists in which images are looked up; null for no list. Several threads use it.
  const trust::KnownDrivers* known = nullptr;
  /// Called on the calling thread, before each image that this thread reads and once after the last, with the number of
  /// images begun and the number of all images. If it returns false, no further image is begun.
  std::function<bool(std::size_t done, std::size_t all)> progress;
  /// The number of images read at the same time; 0 for the number of processors.
  unsigned threads = 0;
};

/// Fills in the members of `records` about the images of services: hashes, signature, signer, and matches in lists. A
/// service without an image stays unchanged; an image that cannot be read has the state "unknown". Services that share
/// a file, under whatever names, share the results. Returns false if `progress` stopped it; then only some records are
/// filled in.
bool Verify(Records& records, const Verification& verification);

}  // namespace inventory
