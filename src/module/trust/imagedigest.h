/// @file
/// A single digest of an image, for a signature whose algorithm was not among the hashes requested before.
#pragma once

#include <string>

#include "trust/algorithms.h"

namespace trust {

/// The hash of the image at `path` (full path, UTF-8) by `algorithm`, hexadecimal in lower case; empty for a file that
/// is not an image or cannot be read.
std::string ImageDigest(const std::string& path, DigestAlgorithm algorithm);

}  // namespace trust
