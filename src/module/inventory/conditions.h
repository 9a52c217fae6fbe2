/// @file
/// Conditions, as people write them: "state=running", "version<2.0", "image_time>30d". A record meets them or not, and
/// so does a row of any table.
#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/members.h"
#include "inventory/patterns.h"
#include "inventory/record.h"
#include "inventory/valueorder.h"

namespace inventory {

/// Explains why a text is not a condition. what() is a sentence without its full stop.
struct ConditionProblem : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The relation that a value must have to the value in a condition.
enum class Relation { Like, Unlike, Less, AtMost, Greater, AtLeast };

/// Gives a condition the value of the column with that index.
using ValueOfColumn = std::function<Value(std::size_t column)>;

/// A member, a relation and a value:
/// - "=" and "!=" take a pattern for the whole text (Pattern); of several texts, one must match. A flag that is not set
///   counts as "false" and as the empty text. An unknown value counts as the empty text.
/// - "<", "<=", ">" and ">=" compare versions, numbers, times and dates in the order of valueorder.h. An unknown value
///   meets none of them.
/// - A time or a date may be given in part: "2020", "2020-01" and "2020-01-31" are a whole year, month and day,
///   "2020-01-31T12:30" a whole minute.
/// - An age can be used instead of a time: images that are more than 30 days old meet "image_time>30d". Units are h, d,
///   w and y; a year has 365 days.
///
/// Blanks around the member and the value do not count.
class Condition {
 public:
  /// Reads `text`, which must name one of `columns`. Throws ConditionProblem.
  Condition(std::string_view text, const std::vector<Column>& columns);

  /// Index of the column among those passed to the constructor.
  std::size_t ColumnIndex() const { return m_column; }

  /// Whether `value` of that column meets the condition. Ages count from `now`, UTC: "2024-05-06T07:08:09Z".
  bool Holds(const Value& value, std::string_view now) const;

 private:
  void SetOperand(const Column& column, std::string_view text);
  bool ComparesAs(int order) const;
  bool IsOfAge(const std::string& time, std::string_view now) const;

  std::size_t m_column = 0;
  ValueType m_type = ValueType::Text;
  Relation m_relation = Relation::Like;
  Pattern m_pattern;
  /// For a time, as far as it is given.
  OrderKey m_limit;
  /// In seconds; 0 if it is not an age.
  std::uint64_t m_age = 0;
};

/// Alternatives: one of them must hold, with all of its conditions. Without alternatives, everything holds.
using Conditions = std::vector<std::vector<Condition>>;

bool Hold(const Conditions& conditions, const ValueOfColumn& valueOf, std::string_view now);

/// The columns of records, for conditions about them.
const std::vector<Column>& RecordColumns();

/// Whether `record` meets `conditions`, which were made with RecordColumns().
bool Hold(const Conditions& conditions, const Record& record, std::string_view now);

/// "there is no member "stat"; did you mean "state"?", for a name that is not one of `columns`.
std::string UnknownMember(std::string_view name, const std::vector<Column>& columns);

}  // namespace inventory
