/// @file
/// The members of a record, in one table: what every document, column, filter, rule and comparison calls them, and what
/// they are.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "inventory/record.h"

namespace inventory {

/// What kind of value a member has, and so how it is written, ordered and compared.
enum class ValueType {
  Text,
  /// A text, ordered by its VersionKey().
  Version,
  Number,
  /// A text: UTC, "2024-05-06T07:08:09Z".
  Time,
  /// A text: "2024-05-06".
  Date,
  /// True, or no value.
  Flag,
  /// An array of texts.
  Texts,
  /// An array of matches with lists of known drivers.
  Known
};

/// std::monostate if it is unknown or does not apply.
using Value = std::variant<std::monostate, std::string, std::uint64_t, bool, std::vector<std::string>,
                           std::vector<trust::KnownMatch>>;

/// `value` in words for a cell: a number in decimal digits, a flag as "true", texts joined by ";", matches as texts,
/// and no value as the empty text.
std::string TextOf(const Value& value);

/// How a column of values is presented, whatever their source.
struct Column {
  /// In documents, headers and on the command line.
  std::string_view name;
  /// For people.
  std::string_view label;
  ValueType type = ValueType::Text;
  /// Its place, from 1, among the default columns of a table and of a page; 0 if it is not one of them.
  unsigned tablePlace = 0;
  unsigned pagePlace = 0;
  /// The width in characters that most values need; a page divides its width accordingly.
  unsigned width = 10;
  /// The width in characters that it keeps in a table while another column can still shrink.
  unsigned floor = 0;
  /// Whether a table never cuts its values, such as versions, numbers and dates.
  bool isWhole = false;
  /// Whether a text that does not fit is cut at its beginning rather than at its end.
  bool keepsEnd = false;
  /// Whether it names the row.
  bool isTitle = false;
  /// Its place, from 1, in the order in which a table that is too narrow leaves out columns, unless they were chosen; 0
  /// if it is never left out.
  unsigned leavesAs = 0;
  /// Whether it is empty unless the inventory was verified; without verification, its places do not count.
  bool isOfVerification = false;
};

/// A column whose values come from an `Owner`.
template <typename Owner>
struct MemberOf : Column {
  using Source = std::variant<std::string Owner::*, std::optional<std::uint64_t> Owner::*, bool Owner::*,
                              std::vector<std::string> Owner::*, std::string (*)(const Owner&)>;
  /// For Known: the same in words.
  Source source;
  /// Whether a different value is a difference between two inventories of a machine.
  bool isCompared = false;
  /// Whether Windows ignores the case of its texts, so that a different case is not a difference.
  bool ignoresCase = false;
  /// Whether it is compared only if both inventories know it, because one of them may not have been verified.
  bool isComparedIfKnown = false;
  /// Whether it is compared only if the versions are equal, because it changes with the version.
  bool isComparedInSameVersion = false;
  /// Whether it is shown for a record that only one of two inventories has.
  bool introduces = false;
};

using Member = MemberOf<Record>;

/// Whether a value of `type` that was cut would be taken for another one, or be of no use.
constexpr bool IsWhole(ValueType type) {
  return type == ValueType::Version || type == ValueType::Number || type == ValueType::Time ||
         type == ValueType::Date || type == ValueType::Flag;
}

/// All members of a record, in the order of the documents.
const std::array<Member, 36>& Members();

/// The member called `name`; null if there is no such member.
const Member* FindMember(std::string_view name);

namespace detail {
inline Value ToValue(const std::string& text) { return text.empty() ? Value() : Value(text); }
inline Value ToValue(const std::optional<std::uint64_t>& number) { return number ? Value(*number) : Value(); }
inline Value ToValue(bool flag) { return flag ? Value(true) : Value(); }
inline Value ToValue(const std::vector<std::string>& texts) { return texts.empty() ? Value() : Value(texts); }
}  // namespace detail

/// The value of `member` in `owner`.
template <typename Owner>
Value ValueOf(const Owner& owner, const MemberOf<Owner>& member) {
  if constexpr (std::is_same_v<Owner, Record>) {
    if (member.type == ValueType::Known) return owner.known.empty() ? Value() : Value(owner.known);
  }
  return std::visit(
      [&owner](auto source) {
        if constexpr (std::is_member_pointer_v<decltype(source)>) {
          return detail::ToValue(owner.*source);
        } else {
          return detail::ToValue(source(owner));
        }
      },
      member.source);
}

}  // namespace inventory
