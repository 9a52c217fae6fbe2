/// @file
/// The lists of known drivers in which images are looked up.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "trust/knowndrivers.h"

namespace inventory {

/// A list cannot be used. what() is the sentence that says why.
struct UnusableList : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The lists in the files at `paths` (UTF-8). Without paths, the list in known-drivers.json next to the program, or no
/// list if there is no such file. Throws UnusableList rather than using only part of a list.
trust::KnownDrivers ReadKnownLists(const std::vector<std::string>& paths);

}  // namespace inventory
