/// @file
/// Conditions, as people write them: "state=running", "version<2.0", "image_time>30d". A record meets them or not; so
/// does a row of any table.
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

/// Why a text is no condition. what() is a sentence without its full stop.
struct ConditionProblem : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// How a value must be to what a condition says.
enum class Relation { Like, Unlike, Less, AtMost, Greater, AtLeast };

/// What a condition asks of the columns of a table: the value of the column with that index.
using ValueOfColumn = std::function<Value(std::size_t column)>;

/// A member, a relation and a value:
/// - "=" and "!=" take a pattern for the whole text (Pattern), of which one text of several must be; a flag that is not
///   set is "false" and the empty text. What is unknown is the empty text.
/// - "<", "<=", ">" and ">=" compare versions, numbers, times and dates, by the order of valueorder.h. A value that is
///   unknown meets none of them.
/// - A time or a date is compared as far as it is written: "2020", "2020-01" and "2020-01-31" are whole years, months
///   and days; "2020-01-31T12:30" goes on.
/// - An age takes the place of a time: "image_time>30d" is met by images that are more than 30 days old. Units are h,
///   d, w and y; a year has 365 days.
///
/// Blanks around the member and the value do not count.
class Condition {
 public:
  /// Reads `text`, whose member is one of `columns`. Throws ConditionProblem.
  Condition(std::string_view text, const std::vector<Column>& columns);

  /// Index of the column in those that it was made with.
  std::size_t ColumnIndex() const { return m_column; }

  /// Whether `value` of that column is what it must be. Ages count from `now`, UTC: "2024-05-06T07:08:09Z".
  bool Holds(const Value& value, std::string_view now) const;

 private:
  void SetOperand(const Column& column, std::string_view text);
  bool ComparesAs(int order) const;
  bool IsOfAge(const std::string& time, std::string_view now) const;

  std::size_t m_column = 0;
  ValueType m_type = ValueType::Text;
  Relation m_relation = Relation::Like;
  Pattern m_pattern;
  /// Of a time, as far as it is written.
  OrderKey m_limit;
  /// In seconds; 0 when it is no age.
  std::uint64_t m_age = 0;
};

/// Alternatives, of which one must hold; of its conditions, all must. No alternative is no demand.
using Conditions = std::vector<std::vector<Condition>>;

bool Hold(const Conditions& conditions, const ValueOfColumn& valueOf, std::string_view now);

/// The columns of records, for conditions about them.
const std::vector<Column>& RecordColumns();

/// Whether `record` meets `conditions`, which were made with RecordColumns().
bool Hold(const Conditions& conditions, const Record& record, std::string_view now);

/// "there is no member "stat"; did you mean "state"?", for a name that is none of `columns`.
std::string UnknownMember(std::string_view name, const std::vector<Column>& columns);

}  // namespace inventory
