/// @file
/// The documents that the program writes and hosts receive: UTF-8, the same in every locale, each ending with a line
/// break.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "inventory/comparison.h"
#include "inventory/healthrules.h"
#include "inventory/inventory.h"
#include "inventory/json.h"
#include "inventory/policycheck.h"

namespace inventory {

/// The document of a list: `head` and "drivers", the objects in `drivers`.
std::string ListJson(Json head, Json drivers);

/// The document of counts: `head` and "groups", the objects in `groups`.
std::string GroupsJson(Json head, Json groups);

/// A line of JSON Lines.
std::string JsonLine(const Json& object);

/// The records as every document has them: an array of objects.
Json RecordsJson(const Records& records);

/// The whole inventory as the document of a list.
std::string InventoryJson(const Inventory& inventory);

/// One line per record, each with the members of the head before its own.
std::string InventoryJsonLines(const Inventory& inventory);

/// One object with `head`, the head of the comparing run; "old" and "new", the heads of both inventories; "summary", an
/// object with the number of groups of each difference and the number of records that are the "same"; and
/// "differences", an array of objects with "difference", "group", "kind", "key", "name" and "changes". "changes" is an
/// array of objects with "member", "old" and "new"; a side without a value is left out.
std::string ComparisonJson(const Comparison& comparison, const Head& head);

/// The elements of `findings` that come from `rule`, in their order.
std::vector<Finding> FindingsOf(const HealthRule& rule, const std::vector<Finding>& findings);

/// The findings as every document has them: an array of objects with "rule", "severity", "id", "subject", "evidence"
/// and "next_step".
Json FindingsArray(const std::vector<Finding>& findings);

/// What a baseline did to an examination.
struct Hiding {
  /// The machine and the time of the baseline.
  Head baseline;
  /// How many findings it hides.
  std::size_t hidden = 0;
};

/// One object with the head; "summary", an object with the number of findings of each rule; and FindingsArray() as
/// "findings". If a baseline hides some, it also has "baseline", an object with its "time" and how many are "hidden".
/// For a verified inventory, it also has "known_lists", an array of objects with "name", "version", "date" and
/// "entries".
std::string FindingsJson(const std::vector<Finding>& findings, const Inventory& inventory,
                         const std::optional<Hiding>& hiding = std::nullopt);

/// One object with `head`, the head of the run that checks; "policy", an object with its "name" and "description";
/// "summary", an object with the number of rules that "passed", "failed" or were "skipped", on all machines; and
/// "machines", an array with the head of each machine, its own "summary", and "rules", an array of objects with "rule",
/// "severity", "message", "result", "examined", "violation_count" and "violations", an array of objects with "subject",
/// "kind" and "evidence".
std::string PolicyCheckJson(const Policy& policy, const std::vector<PolicyCheck>& checks, const Head& head);

}  // namespace inventory
