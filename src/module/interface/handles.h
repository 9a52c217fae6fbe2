/// @file
/// The handles that hosts hold. A handle is a number, no address, so that one that was released, or never was one, is
/// found out without looking into memory.
#pragma once

#include <memory>

#include "driverinventory.h"
#include "interface/contents.h"

namespace flat {

/// How many inventories can be open at once.
constexpr std::size_t MostHandles = 4096;

/// A new handle of `contents`. Throws Failure if too many are open.
driverinventory* NewHandle(std::unique_ptr<const Contents> contents);

/// What `handle` refers to, without waiting. Throws Failure for what is no handle.
const Contents& ContentsOf(const driverinventory* handle);

/// Ends `handle` and what it refers to. Throws Failure for what is no handle.
void Release(const driverinventory* handle);

}  // namespace flat
