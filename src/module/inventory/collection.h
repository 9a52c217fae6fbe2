/// @file
/// An inventory as lines for a log shipper, to be loaded into a database of many machines.
#pragma once

#include <string>

#include "inventory/inventory.h"

namespace inventory {

/// JSON Lines in UTF-8. The first line has the head, "kind": "collection", the number of records ("drivers") and the
/// digest of their content. A line for each record follows, with the members of the head and of the record.
///
/// The digest is the SHA-256 of the record lines without the members of the head, so it is the same on every run until
/// a record changes. It is left out if Windows cannot compute it. If it equals `knownDigest` (in upper or lower case),
/// there is only the first line, which then says "unchanged".
std::string CollectionLines(const Inventory& inventory, const std::string& knownDigest);

}  // namespace inventory
