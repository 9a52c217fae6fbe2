/// @file
/// Which files a catalog lists. Needs nothing of the platform.
#pragma once

#include <string>
#include <vector>

#include "trust/bytes.h"

namespace trust {

/// The digests of the files that the content of a catalog lists, as bytes: SHA-1 in catalogs of version 1, SHA-256 in
/// those of version 2. Nothing for what is no list.
std::vector<Bytes> ParseTrustList(Bytes content);

}  // namespace trust
