/// @file
/// Heads and records as JSON.
#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "inventory/head.h"
#include "inventory/members.h"

namespace inventory {

/// The library's own conversions. That the type is ours makes Json one, whose destruction can be ours.
template <typename T, typename Enable>
struct JsonConversion : nlohmann::adl_serializer<T, Enable> {};

/// Keeps the order of members.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t,
                                  double, std::allocator, JsonConversion>;

/// Destroys what a value of JSON owns, and gives its memory back as the library got it.
template <typename T>
void DestroyOwned(T* owned) noexcept {
  std::destroy_at(owned);
  std::allocator<T>().deallocate(owned, 1);
}

}  // namespace inventory

/// Destroys an array or an object by its own destructor. The library's definition first moves the elements into a
/// vector, so that deep nesting does not use up the stack; but that vector needs memory, in a destructor, and the
/// process ends where there is none. Documents nest a few levels only.
template <>
inline void inventory::Json::json_value::destroy(value_t type) {
  switch (type) {
    case value_t::object:
      return inventory::DestroyOwned(object);
    case value_t::array:
      return inventory::DestroyOwned(array);
    case value_t::string:
      return inventory::DestroyOwned(string);
    case value_t::binary:
      return inventory::DestroyOwned(binary);
    default:
      // The others own nothing.
      return;
  }
}

namespace inventory {

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
