#include "inventory/conditions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

#include "inventory/nearestname.h"
#include "inventory/times.h"

namespace inventory {
namespace {

struct Operator {
  std::string_view sign;
  Relation relation;
};

/// A sign stands before any other sign that it begins with: "<=" before "<".
constexpr std::array<Operator, 6> Operators = {{{"!=", Relation::Unlike},
                                                {"<=", Relation::AtMost},
                                                {">=", Relation::AtLeast},
                                                {"=", Relation::Like},
                                                {"<", Relation::Less},
                                                {">", Relation::Greater}}};

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// A condition in its parts.
struct Parts {
  std::string_view name;
  std::string_view sign;
  Relation relation;
  std::string_view value;
};

Parts PartsOf(std::string_view text) {
  const std::size_t at = std::min(text.find_first_of("=!<>"), text.size());
  const std::string_view rest = text.substr(at);
  for (const Operator& known : Operators) {
    if (rest.substr(0, known.sign.size()) != known.sign) continue;
    return {Trimmed(text.substr(0, at)), known.sign, known.relation, Trimmed(rest.substr(known.sign.size()))};
  }
  throw ConditionProblem(Quoted(text) +
                         " is not a condition: write MEMBER=PATTERN, or !=, <, <=, > or >= instead of =");
}

std::size_t IndexNamed(std::string_view name, const std::vector<Column>& columns) {
  const auto found =
      std::find_if(columns.begin(), columns.end(), [name](const Column& column) { return column.name == name; });
  if (found == columns.end()) throw ConditionProblem(UnknownMember(name, columns));
  return static_cast<std::size_t>(found - columns.begin());
}

bool IsOrdered(ValueType type) {
  return type == ValueType::Version || type == ValueType::Number || type == ValueType::Time || type == ValueType::Date;
}

void RequireOrder(const Column& column, const Parts& parts) {
  if (IsOrdered(column.type)) return;
  const std::string name(column.name);
  const std::string what = column.type == ValueType::Flag    ? " is true or unknown"
                           : column.type == ValueType::Texts ? " is a list of texts"
                                                             : " is a text";
  const std::string example = column.type == ValueType::Flag ? "=true" : "=a*";
  throw ConditionProblem(name + what + ", which " + std::string(parts.sign) +
                         " cannot compare: use = or != with a pattern, such as " + name + example);
}

std::optional<std::uint64_t> WholeNumber(std::string_view text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// "30d" in seconds.
std::optional<std::uint64_t> AgeIn(std::string_view text) {
  constexpr std::uint64_t hour = 60 * 60;
  constexpr std::uint64_t day = 24 * hour;
  constexpr std::array<std::pair<char, std::uint64_t>, 4> units = {
      {{'h', hour}, {'d', day}, {'w', 7 * day}, {'y', 365 * day}}};
  constexpr std::uint64_t most = 1'000'000;
  if (text.empty()) return std::nullopt;
  const auto unit = std::find_if(units.begin(), units.end(),
                                 [text](const auto& candidate) { return candidate.first == text.back(); });
  const std::optional<std::uint64_t> count = WholeNumber(text.substr(0, text.size() - 1));
  if (unit == units.end() || !count || *count == 0 || *count > most) return std::nullopt;
  return *count * unit->second;
}

/// Whether `text` is a time cut after a whole part, such as "2024-03".
bool IsTimeAsFarAsWritten(std::string_view text) {
  // "0" stands for any digit.
  constexpr std::string_view shape = "0000-00-00T00:00:00";
  constexpr std::array<std::size_t, 5> ends = {4, 7, 10, 16, 19};
  if (std::find(ends.begin(), ends.end(), text.size()) == ends.end()) return false;
  return std::equal(text.begin(), text.end(), shape.begin(),
                    [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; });
}

}  // namespace

Condition::Condition(std::string_view text, const std::vector<Column>& columns) : m_pattern("") {
  const Parts parts = PartsOf(text);
  m_column = IndexNamed(parts.name, columns);
  m_type = columns[m_column].type;
  m_relation = parts.relation;
  if (m_relation == Relation::Like || m_relation == Relation::Unlike) {
    m_pattern = Pattern(parts.value);
    return;
  }
  RequireOrder(columns[m_column], parts);
  if (HasWildcards(parts.value)) {
    throw ConditionProblem(Quoted(text) + ": " + std::string(parts.sign) +
                           " compares with a value, not with a pattern");
  }
  SetOperand(columns[m_column], parts.value);
}

void Condition::SetOperand(const Column& column, std::string_view text) {
  const std::string name(column.name);
  if (m_type == ValueType::Number && !WholeNumber(text)) {
    throw ConditionProblem(Quoted(text) + " is not a whole number, which " + name + " needs");
  }
  if (m_type == ValueType::Version && text.empty()) throw ConditionProblem(name + " needs a version to compare with");
  if (m_type == ValueType::Time || m_type == ValueType::Date) {
    if (const std::optional<std::uint64_t> age = AgeIn(text)) {
      m_age = *age;
      return;
    }
    if (!text.empty() && text.back() == 'Z') text.remove_suffix(1);
    if (!IsTimeAsFarAsWritten(text)) {
      throw ConditionProblem(Quoted(text) + " is neither a time, such as 2020-01-31, nor an age, such as 30d");
    }
  }
  m_limit = OrderKeyOf(Value(std::string(text)), m_type);
}

bool Condition::ComparesAs(int order) const {
  switch (m_relation) {
    case Relation::Less:
      return order < 0;
    case Relation::AtMost:
      return order <= 0;
    case Relation::Greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

bool Condition::IsOfAge(const std::string& time, std::string_view now) const {
  const std::optional<std::int64_t> then = SecondsOf(time);
  const std::optional<std::int64_t> today = SecondsOf(now);
  if (!then || !today) return false;
  const std::int64_t age = *today - *then;
  const auto limit = static_cast<std::int64_t>(m_age);
  return ComparesAs(age < limit ? -1 : (age > limit ? 1 : 0));
}

bool Condition::Holds(const Value& value, std::string_view now) const {
  if (m_relation == Relation::Like || m_relation == Relation::Unlike) {
    const bool isUnset = m_type == ValueType::Flag && std::holds_alternative<std::monostate>(value);
    const bool isLike = m_pattern.Matches(value) || (isUnset && m_pattern.Matches(std::string_view("false")));
    return isLike == (m_relation == Relation::Like);
  }
  OrderKey key = OrderKeyOf(value, m_type);
  if (!key.isKnown) return false;
  if (m_age > 0) return IsOfAge(key.text, now);
  if (m_type == ValueType::Time || m_type == ValueType::Date)
    key.text.resize(std::min(key.text.size(), m_limit.text.size()));
  return ComparesAs(key < m_limit ? -1 : (m_limit < key ? 1 : 0));
}

bool Hold(const Conditions& conditions, const ValueOfColumn& valueOf, std::string_view now) {
  const auto holds = [&](const Condition& condition) { return condition.Holds(valueOf(condition.ColumnIndex()), now); };
  return conditions.empty() ||
         std::any_of(conditions.begin(), conditions.end(), [&holds](const std::vector<Condition>& alternative) {
           return std::all_of(alternative.begin(), alternative.end(), holds);
         });
}

const std::vector<Column>& RecordColumns() {
  static const std::vector<Column> columns(Members().begin(), Members().end());
  return columns;
}

bool Hold(const Conditions& conditions, const Record& record, std::string_view now) {
  return Hold(
      conditions, [&record](std::size_t column) { return ValueOf(record, Members()[column]); }, now);
}

std::string UnknownMember(std::string_view name, const std::vector<Column>& columns) {
  std::vector<std::string_view> names;
  for (const Column& column : columns) names.push_back(column.name);
  const std::string_view nearest = NearestName(name, names);
  const std::string sentence = "there is no member " + Quoted(name);
  return sentence +
         (nearest.empty() ? "; \"driverlist help members\" lists them all" : "; did you mean " + Quoted(nearest) + "?");
}

}  // namespace inventory
