/// @file
/// Collections for hosts, one at a time.
#pragma once

#include "interface/options.h"

namespace flat {

/// Collects this machine's inventory as soon as no other thread is collecting. Throws Failure if it is called from the
/// progress callback of a collection, which would wait for itself.
inventory::Inventory Collect(const Wanted& wanted);

}  // namespace flat
