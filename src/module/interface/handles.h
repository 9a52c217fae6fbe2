/// @file
/// The handles that hosts hold. A handle is a number and not an address, so a handle that is invalid or was released is
/// recognised without touching memory.
#pragma once

#include <memory>

#include "driverinventory.h"
#include "interface/contents.h"

namespace flat {

/// How many inventories can be open at once.
constexpr std::size_t MostHandles = 4096;

/// A new handle for `contents`. Throws Failure if too many are open.
driverinventory* NewHandle(std::unique_ptr<const Contents> contents);

/// The object behind `handle`, without waiting. Throws Failure if `handle` is not a handle.
const Contents& ContentsOf(const driverinventory* handle);

/// Releases `handle` and the object behind it. Throws Failure if `handle` is not a handle.
void Release(const driverinventory* handle);

}  // namespace flat
