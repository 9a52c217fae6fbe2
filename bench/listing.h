/// @file
/// The library, listing into a vector of the module's own, so that a program can load and unload both: a library that
/// was just loaded has empty caches.
#pragma once

#include <vector>

#include "record.h"

extern "C" {
/// Puts `records` into the vector: their names, descriptions, providers and versions.
using SetRecordsFunction = void(const std::vector<bench::Record>& records);
/// Lists as DriverInfo::list_drivers() does, `mode` being its type, behind what the vector holds.
using ListDriversFunction = void(int mode);
/// What the vector holds. Empties it.
using TakeRecordsFunction = void(std::vector<bench::Record>& records);
}
