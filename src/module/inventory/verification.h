/// @file
/// Whether the images of an inventory's services are what they say they are.
#pragma once

#include <cstddef>
#include <functional>

#include "inventory/record.h"
#include "trust/knowndrivers.h"

namespace inventory {

struct Verification {
  /// The lists to look images up in; null for no list. Is asked by several threads.
  const trust::KnownDrivers* known = nullptr;
  /// Called on the thread that asked, before each image that this thread looks at and once after the last: how many of
  /// how many are begun. When it is false no further image is begun.
  std::function<bool(std::size_t done, std::size_t all)> progress;
  /// How many images are read at a time; 0 for as many as there are processors.
  unsigned threads = 0;
};

/// Sets what `records` say of the images of services: hashes, signature, signer, and which lists know them. A service
/// without image is left as it is; an image that cannot be read has the state "unknown". Services that share a file
/// share what is read of it, under whatever name. False when `progress` ended it: then some records are set.
bool Verify(Records& records, const Verification& verification);

}  // namespace inventory
