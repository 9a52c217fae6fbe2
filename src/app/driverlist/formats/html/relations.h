/// @file
/// The relations between the records on a page.
#pragma once

#include <cstddef>
#include <vector>

#include "inventory/record.h"

namespace driverlist {

/// For each of `records`, the indexes of the records that it refers to or that refer to it, in ascending order. Related
/// are a device, the package it was installed from and the service that drives it, and also a package and every service
/// whose image is one of its files.
std::vector<std::vector<std::size_t>> Related(const inventory::Records& records);

}  // namespace driverlist
