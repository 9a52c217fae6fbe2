/// @file
/// Which files a catalog lists. Uses no platform API.
#pragma once

#include <string>
#include <vector>

#include "trust/bytes.h"

namespace trust {

/// The digests of the files that the content of a catalog lists, as bytes: SHA-1 in catalogs of version 1, SHA-256 in
/// catalogs of version 2. Empty if it is not a list.
std::vector<Bytes> ParseTrustList(Bytes content);

}  // namespace trust
