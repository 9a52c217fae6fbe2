/// @file
/// The documents that the program writes and any host gets: UTF-8, the same in every locale, each ended by a line
/// break.
#pragma once

#include <string>
#include <vector>

#include "inventory/comparison.h"
#include "inventory/healthrules.h"
#include "inventory/inventory.h"
#include "inventory/json.h"

namespace inventory {

/// The document of a list: `head` and "drivers", the objects in `drivers`.
std::string ListJson(Json head, Json drivers);

/// The document of counts: `head` and "groups", the objects in `groups`.
std::string GroupsJson(Json head, Json groups);

/// A line of JSON Lines.
std::string JsonLine(const Json& object);

/// The records as every document has them: an array of objects.
Json RecordsJson(const Records& records);

/// The whole inventory as a list.
std::string InventoryJson(const Inventory& inventory);

/// One line per record, each with the members of the head in front of its own.
std::string InventoryJsonLines(const Inventory& inventory);

/// One object: `head`, which is that of the run that compares, "old" and "new", the heads of both inventories,
/// "summary", an object that has the number of groups of each difference and the number of records that are the "same",
/// and "differences", an array of objects that have "difference", "group", "kind", "key", "name" and "changes", an
/// array of objects that have "member", "old" and "new", each as far as there is a value.
std::string ComparisonJson(const Comparison& comparison, const Head& head);

/// Those of `findings` that `rule` made, in their order.
std::vector<Finding> FindingsOf(const HealthRule& rule, const std::vector<Finding>& findings);

/// One object: the head, "summary", an object that has the number of findings of each rule, and "findings", an array of
/// objects that have "rule", "subject" and "evidence"; of an inventory that was verified also "known_lists", an array
/// of objects that have "name", "version", "date" and "entries".
std::string FindingsJson(const std::vector<Finding>& findings, const Inventory& inventory);

}  // namespace inventory
