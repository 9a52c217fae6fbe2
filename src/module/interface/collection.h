/// @file
/// Collecting for hosts: one at a time.
#pragma once

#include "interface/options.h"

namespace flat {

/// Collects this machine's inventory, when no other thread does any more. Throws Failure when it is called from the
/// progress callback of a collection, which would wait for itself.
inventory::Inventory Collect(const Wanted& wanted);

}  // namespace flat
