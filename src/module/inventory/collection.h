/// @file
/// An inventory as lines for a shipper of logs: what a database of many machines takes in.
#pragma once

#include <string>

#include "inventory/inventory.h"

namespace inventory {

/// JSON Lines in UTF-8. The first line has the head, "kind": "collection", how many records there are ("drivers") and
/// the digest of their content; it is followed by a line for each record: the head's members and the record's.
///
/// The digest is the SHA-256 of the records' lines without the head's members, so it is the same on every run until a
/// record changes; it is left out when Windows cannot compute it. Where it is `knownDigest`, in either case, there is
/// the first line only, which then says "unchanged".
std::string CollectionLines(const Inventory& inventory, const std::string& knownDigest);

}  // namespace inventory
