/// @file
/// An inventory in a file of its own, to be compared with a later one.
#pragma once

#include <cstddef>
#include <functional>
#include <streambuf>
#include <string>

#include "inventory/inventory.h"

namespace inventory {

/// How many records a snapshot may hold.
constexpr std::size_t MostRecords = 1'000'000;

/// "kind", the head, and "drivers": the records as all documents have them. JSON in UTF-8, ended by a line break.
std::string SnapshotText(const Inventory& inventory);

/// Whether a record, of a snapshot of `schema`, need not be kept.
using IsSettled = std::function<bool(const Record& record, unsigned schema)>;

/// Reads what SnapshotText() wrote, or what the program wrote in schema 1 (schema1.h), in any order of members. Passes
/// over members that it does not know; null counts as unknown. Holds the records for which `isSettled` does not hold,
/// and never the text; reads `text` a second time where the head follows the records. Throws InputProblem if it is not
/// such a snapshot.
Inventory ReadSnapshot(std::streambuf& text, const IsSettled& isSettled = nullptr);

}  // namespace inventory
