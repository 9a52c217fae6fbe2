/// @file
/// A single digest of an image, for signatures whose algorithm nobody asked for before.
#pragma once

#include <string>

#include "trust/algorithms.h"

namespace trust {

/// The hash of the image at `path` (full path, UTF-8) by `algorithm`, hexadecimal in lower case; empty for a file that
/// is no image or cannot be read.
std::string ImageDigest(const std::string& path, DigestAlgorithm algorithm);

}  // namespace trust
