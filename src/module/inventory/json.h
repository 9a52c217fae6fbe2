/// @file
/// Heads and records as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "inventory/head.h"
#include "inventory/members.h"

namespace inventory {

/// Keeps the order of members.
using Json = nlohmann::ordered_json;

/// Version of the documents that the program writes.
constexpr unsigned SchemaVersion = 2;

/// "schema_version" and the members of `head`: how every document begins. Unknown ones are left out.
Json HeadJson(const Head& head);

/// Sets a member of `object`, unless there is no value.
void AddValue(Json& object, std::string_view name, const Value& value);

/// Sets all members that `record` has.
void AddMembers(Json& object, const Record& record);

/// One line without an end; indented by two blanks a level when `isIndented`. What is not UTF-8 is replaced by U+FFFD.
std::string JsonText(const Json& json, bool isIndented);

}  // namespace inventory
