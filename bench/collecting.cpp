#include <cstddef>

#include "inventory/inventory.h"

/// The number of records.
extern "C" __declspec(dllexport) std::size_t CollectInventory() { return inventory::Collect({}).records.size(); }
