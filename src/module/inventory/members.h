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
  /// True, or nothing.
  Flag,
  /// An array of texts.
  Texts,
  /// An array of matches with lists of known drivers.
  Known
};

/// Nothing when it is unknown or does not apply.
using Value = std::variant<std::monostate, std::string, std::uint64_t, bool, std::vector<std::string>,
                           std::vector<trust::KnownMatch>>;

/// `value` in words for a cell: a number in decimal digits, a flag as "true", texts joined by ";", matches as texts,
/// and nothing as the empty text.
std::string TextOf(const Value& value);

/// How a column of values presents itself, whoever has them.
struct Column {
  /// In documents, headers and on the command line.
  std::string_view name;
  /// For people.
  std::string_view label;
  ValueType type = ValueType::Text;
  /// Its place, from 1, among the columns of a table, and of a page, for which none were chosen; 0 when it is not among
  /// them.
  unsigned tablePlace = 0;
  unsigned pagePlace = 0;
  /// Characters that most values need: a page gives columns their share by it.
  unsigned width = 10;
  /// Characters that it keeps in a table while another column can still give some.
  unsigned floor = 0;
  /// Whether a text that does not fit loses its beginning rather than its end.
  bool keepsEnd = false;
  /// Whether it names the row.
  bool isTitle = false;
  /// Whether a table of less than 120 characters does without it, unless it was chosen.
  bool isForWideTables = false;
  /// Whether it is empty unless the inventory was verified: then its places do not count either.
  bool isOfVerification = false;
};

/// A column whose values an `Owner` has.
template <typename Owner>
struct MemberOf : Column {
  using Source = std::variant<std::string Owner::*, std::optional<std::uint64_t> Owner::*, bool Owner::*,
                              std::vector<std::string> Owner::*, std::string (*)(const Owner&)>;
  /// Of Known: the same in words.
  Source source;
  /// Whether another value makes a difference between two inventories of a machine.
  bool isCompared = false;
  /// Whether Windows ignores the case of its texts, so that another case makes no difference.
  bool ignoresCase = false;
  /// Whether it makes none where only one of the inventories knows it, since the other was not verified.
  bool isComparedIfKnown = false;
  /// Whether it makes none where the versions differ, since it follows from them.
  bool isComparedInSameVersion = false;
  /// Whether it is shown of a record that only one of two inventories has.
  bool introduces = false;
};

using Member = MemberOf<Record>;

/// All members of a record, in the order of the documents.
const std::array<Member, 36>& Members();

/// The member called `name`; null when there is none.
const Member* FindMember(std::string_view name);

namespace detail {
inline Value ToValue(const std::string& text) { return text.empty() ? Value() : Value(text); }
inline Value ToValue(const std::optional<std::uint64_t>& number) { return number ? Value(*number) : Value(); }
inline Value ToValue(bool flag) { return flag ? Value(true) : Value(); }
inline Value ToValue(const std::vector<std::string>& texts) { return texts.empty() ? Value() : Value(texts); }
}  // namespace detail

/// What `owner` has of `member`.
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
