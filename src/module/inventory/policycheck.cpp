#include "inventory/policycheck.h"

#include <algorithm>
#include <utility>

#include "inventory/predicates.h"

namespace inventory {
namespace {

/// Whether a condition about an image that could not be read counts as true.
enum class Doubt { Holds, Fails };

/// Collects the result of one rule.
class RuleCheck {
 public:
  RuleCheck(const Inventory& inventory, std::size_t& violationsLeft)
      : m_inventory(inventory), m_violationsLeft(violationsLeft) {}

  RuleResult Of(const PolicyRule& rule) {
    for (const PolicyClause& clause : rule.clauses) {
      if (clause.demand == Demand::Require) {
        Require(clause);
      } else {
        ForEachConcerned(clause);
      }
    }
    if (m_result.violationCount > 0) {
      m_result.state = RuleState::Broken;
    } else if (m_result.examined == 0 && !m_isFulfilled) {
      m_result.state = RuleState::NotApplicable;
    }
    return std::move(m_result);
  }

 private:
  void ForEachConcerned(const PolicyClause& clause) {
    for (const Record& record : m_inventory.records) {
      if (!Holds(clause.where, record, Doubt::Holds)) continue;
      ++m_result.examined;
      if (clause.demand == Demand::Forbid) {
        Forbid(clause, record);
      } else if (!Holds(clause.conditions, record, Doubt::Fails)) {
        Add({SubjectOf(record), Unmet(clause.conditions, record), std::string(KindName(record.kind))});
      }
    }
  }

  void Forbid(const PolicyClause& clause, const Record& record) {
    for (std::size_t i = 0; i < clause.conditions.conditions.size(); ++i) {
      const std::vector<Condition>& alternative = clause.conditions.conditions[i];
      if (!AllHold(alternative, record, Doubt::Holds)) continue;
      return Add({SubjectOf(record), Met(alternative, record), std::string(KindName(record.kind))});
    }
  }

  void Require(const PolicyClause& clause) {
    const auto meets = [this, &clause](const Record& record) {
      return Holds(clause.where, record, Doubt::Fails) && Holds(clause.conditions, record, Doubt::Fails);
    };
    const Records& records = m_inventory.records;
    if (std::any_of(records.begin(), records.end(), meets)) {
      m_isFulfilled = true;
      return;
    }
    const std::string where = Texts(clause.where);
    const std::string conditions = Texts(clause.conditions);
    Add({where.empty() ? conditions : where + ", " + conditions, "there is no such driver"});
  }

  void Add(Violation violation) {
    ++m_result.violationCount;
    if (m_violationsLeft == 0) return;
    --m_violationsLeft;
    m_result.violations.push_back(std::move(violation));
  }

  static std::string SubjectOf(const Record& record) {
    if (IsService(record)) return record.service;
    return IsPackage(record) ? record.inf : record.name;
  }

  static const inventory::Member& MemberOf(const Condition& condition) { return Members()[condition.ColumnIndex()]; }

  /// Whether `condition` cannot be decided because the image could not be read.
  static bool IsInDoubt(const Condition& condition, const Record& record) {
    return MemberOf(condition).isOfVerification && IsService(record) && !IsImageMissing(record) &&
           record.sha256.empty();
  }

  bool HoldsOf(const Condition& condition, const Record& record) const {
    return condition.Holds(ValueOf(record, MemberOf(condition)), m_inventory.head.time);
  }

  bool AllHold(const std::vector<Condition>& alternative, const Record& record, Doubt doubt) const {
    return std::all_of(alternative.begin(), alternative.end(), [&](const Condition& condition) {
      return IsInDoubt(condition, record) ? doubt == Doubt::Holds : HoldsOf(condition, record);
    });
  }

  bool Holds(const PolicyConditions& conditions, const Record& record, Doubt doubt) const {
    return conditions.conditions.empty() ||
           std::any_of(conditions.conditions.begin(), conditions.conditions.end(),
                       [&](const auto& alternative) { return AllHold(alternative, record, doubt); });
  }

  /// "version is 1.2"
  static std::string ValueText(const Condition& condition, const Record& record) {
    constexpr std::size_t longest = 300;
    const inventory::Member& member = MemberOf(condition);
    const std::string name(member.name);
    if (IsInDoubt(condition, record)) return name + " is not known, since the image could not be read";
    std::string value = TextOf(ValueOf(record, member));
    if (value.empty()) value = member.type == ValueType::Flag ? "false" : "unknown";
    if (value.size() <= longest) return name + " is " + value;
    // A character that is cut in half is shown as U+FFFD.
    return name + " is " + value.substr(0, longest) + "...";
  }

  /// "version is 1.2, state is Running"
  static std::string Met(const std::vector<Condition>& alternative, const Record& record) {
    std::string text;
    for (const Condition& condition : alternative) {
      // The kind adds nothing to the other values.
      if (MemberOf(condition).name == "kind") continue;
      text += (text.empty() ? "" : ", ") + ValueText(condition, record);
    }
    return text.empty() ? ValueText(alternative.front(), record) : text;
  }

  /// "version is 1.2, where version>=2 is expected"; with alternatives, what each of them lacks.
  std::string Unmet(const PolicyConditions& conditions, const Record& record) const {
    std::vector<std::string> values;
    std::string expected;
    for (std::size_t i = 0; i < conditions.conditions.size(); ++i) {
      std::string unmet;
      for (std::size_t k = 0; k < conditions.conditions[i].size(); ++k) {
        const Condition& condition = conditions.conditions[i][k];
        if (!IsInDoubt(condition, record) && HoldsOf(condition, record)) continue;
        const std::string value = ValueText(condition, record);
        if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
        unmet += (unmet.empty() ? "" : ", ") + conditions.texts[i][k];
      }
      expected += (expected.empty() ? "" : " or ") + unmet;
    }
    std::string text;
    for (const std::string& value : values) text += (text.empty() ? "" : ", ") + value;
    return text + ", where " + expected + " is expected";
  }

  /// "a=1, b=2 or c=3"
  static std::string Texts(const PolicyConditions& conditions) {
    std::string text;
    for (const auto& alternative : conditions.texts) {
      text += text.empty() ? "" : " or ";
      for (const std::string& condition : alternative)
        text += (&condition == &alternative.front() ? "" : ", ") + condition;
    }
    return text;
  }

  const Inventory& m_inventory;
  std::size_t& m_violationsLeft;
  RuleResult m_result;
  /// Whether a requirement was met.
  bool m_isFulfilled = false;
};

}  // namespace

std::string_view RuleStateName(RuleState state) {
  switch (state) {
    case RuleState::Kept:
      return "passed";
    case RuleState::Broken:
      return "failed";
    case RuleState::NotApplicable:
      break;
  }
  return "skipped";
}

std::size_t PolicyCheck::CountOf(RuleState state) const {
  return static_cast<std::size_t>(std::count_if(results.begin(), results.end(),
                                                [state](const RuleResult& result) { return result.state == state; }));
}

PolicyCheck Check(const Policy& policy, const Inventory& inventory) {
  PolicyCheck check;
  check.head = inventory.head;
  std::size_t violationsLeft = MostViolations;
  for (const PolicyRule& rule : policy.rules) check.results.push_back(RuleCheck(inventory, violationsLeft).Of(rule));
  return check;
}

}  // namespace inventory
