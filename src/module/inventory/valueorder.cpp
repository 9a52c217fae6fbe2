#include "inventory/valueorder.h"

#include <charconv>
#include <tuple>
#include <utility>

#include "inventory/predicates.h"
#include "inventory/versionkey.h"

namespace inventory {
namespace {

std::uint64_t NumberIn(const std::string& text) {
  std::uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

bool operator<(const OrderKey& a, const OrderKey& b) {
  return std::tie(a.isKnown, a.number, a.text) < std::tie(b.isKnown, b.number, b.text);
}

OrderKey OrderKeyOf(const Value& value, ValueType type) {
  std::string text = TextOf(value);
  switch (type) {
    case ValueType::Version:
      return IsKnownVersion(text) ? OrderKey{true, 0, VersionKey(text)} : OrderKey();
    case ValueType::Number:
      return {!text.empty(), NumberIn(text), std::string()};
    default:
      return {!text.empty(), 0, std::move(text)};
  }
}

}  // namespace inventory
