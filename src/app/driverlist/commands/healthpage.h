/// @file
/// The findings of `health` as a page.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "inventory/documents.h"
#include "inventory/healthrules.h"
#include "inventory/inventory.h"

namespace driverlist {

/// A single HTML file like that of FormatHtml(): `findings`, how many a baseline hides, and below them all records of
/// `inventory`.
std::string HealthPage(const std::vector<inventory::Finding>& findings, const inventory::Inventory& inventory,
                       const std::optional<inventory::Hiding>& hiding);

}  // namespace driverlist
