/// @file
/// An inventory in a file, to be compared with a later one.
#pragma once

#include <cstddef>
#include <functional>
#include <streambuf>
#include <string>

#include "inventory/inventory.h"

namespace inventory {

/// The largest number of records in a snapshot.
constexpr std::size_t MostRecords = 1'000'000;

/// "kind", the head, "looked_up" if images were looked up in a list of known drivers, and "drivers": the records as all
/// documents have them. JSON in UTF-8, ending with a line break.
std::string SnapshotText(const Inventory& inventory);

/// Whether a record of a snapshot of `schema` need not be kept.
using IsSettled = std::function<bool(const Record& record, unsigned schema)>;

/// Reads a snapshot that SnapshotText() wrote, or that the program wrote in schema 1 (schema1.h), with the members in
/// any order. Ignores unknown members; null means unknown. Keeps only the records for which `isSettled` is false, and
/// never the whole text; reads `text` a second time if the head comes after the records. Throws InputProblem if it is
/// not such a snapshot.
Inventory ReadSnapshot(std::streambuf& text, const IsSettled& isSettled = nullptr);

}  // namespace inventory
