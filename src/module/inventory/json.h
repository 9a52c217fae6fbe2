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

/// The conversions of the JSON library. With a type of our own, Json is a class of its own, whose destruction we can
/// define.
template <typename T, typename Enable>
struct JsonConversion : nlohmann::adl_serializer<T, Enable> {};

/// Keeps the order of members.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t,
                                  double, std::allocator, JsonConversion>;

/// Destroys the contents of a JSON value and frees its memory the way the library allocated it.
template <typename T>
void DestroyOwned(T* owned) noexcept {
  std::destroy_at(owned);
  std::allocator<T>().deallocate(owned, 1);
}

}  // namespace inventory

/// Destroys an array or an object with its own destructor. The definition in the library first moves the elements into
/// a vector, so that deep nesting does not exhaust the stack. But that vector allocates memory in a destructor, and the
/// process ends if there is none. Our documents nest only a few levels deep.
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
      // The other types own nothing.
      return;
  }
}

namespace inventory {

/// Version of the documents that the program writes.
constexpr unsigned SchemaVersion = 2;

/// "schema_version" and the members of `head`: how every document begins. Unknown ones are left out.
Json HeadJson(const Head& head);

/// Sets a member of `object` if there is a value.
void AddValue(Json& object, std::string_view name, const Value& value);

/// Sets all members that `record` has.
void AddMembers(Json& object, const Record& record);

/// One line without a line break; with `isIndented`, several lines indented by two blanks per level. Bytes that are not
/// UTF-8 are replaced by U+FFFD.
std::string JsonText(const Json& json, bool isIndented);

}  // namespace inventory
