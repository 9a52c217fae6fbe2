/// @file
/// The lists of known drivers that images are looked up in.
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

/// The lists in the files at `paths` (UTF-8). Without any, that of known-drivers.json beside the program, or no list
/// where there is no such file. Throws UnusableList: nothing is looked up in part of a list.
trust::KnownDrivers ReadKnownLists(const std::vector<std::string>& paths);

}  // namespace inventory
