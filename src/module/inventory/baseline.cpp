#include "inventory/baseline.h"

#include <optional>
#include <utility>

#include "inventory/documents.h"
#include "inventory/ignoringcase.h"
#include "inventory/input.h"
#include "inventory/predicates.h"
#include "platform/jsoninput.h"

namespace inventory {
namespace {

using Orvane::DamagedJson;
using Orvane::JsonEvents;
using Orvane::JsonScalar;
using Orvane::JsonType;

constexpr char KindMember[] = "kind";
constexpr char BaselineKind[] = "driverlist baseline";
constexpr char SchemaMember[] = "schema_version";
constexpr char VerifiedMember[] = "verified";
constexpr char FindingsMember[] = "findings";
constexpr char IdMember[] = "id";

/// Takes the members of a baseline.
class BaselineReader final : public JsonEvents {
 public:
  void Begin(JsonType type) override {
    const Place place = Enter(type);
    m_places.push_back(place);
  }

  void End() override {
    if (Here() == Place::Finding && !m_hasId) Refuse("finding " + std::to_string(m_count) + " has no id");
    m_places.pop_back();
  }

  void Name(const std::string& name) override {
    if (Here() == Place::Document || Here() == Place::Finding) m_name = name;
  }

  void Value(const JsonScalar& value) override {
    if (Here() == Place::Document) SetHead(value);
    if (Here() == Place::Findings) Refuse("finding " + std::to_string(m_count + 1) + " is no object");
    if (Here() == Place::Finding && m_name == IdMember) AddId(value);
  }

  bool IsBaseline() const { return m_kind == BaselineKind; }

  /// Throws if a member that every baseline has is missing.
  Baseline Take() {
    if (!IsBaseline()) throw InputProblem("is not a baseline of driverlist");
    if (m_schema.value_or(0) > SchemaVersion) {
      throw InputProblem("was written by a newer driverlist: its schema version is " + std::to_string(*m_schema) +
                         ", and this one reads " + std::to_string(SchemaVersion));
    }
    if (!m_problem.empty()) Refuse(m_problem);
    if (m_schema != SchemaVersion) Refuse("it has no schema_version that this driverlist knows");
    if (!m_hasVerified) Refuse("it does not say whether images were verified");
    if (!m_hasFindings) Refuse("it has no findings");
    return std::move(m_baseline);
  }

 private:
  enum class Place { Document, Findings, Finding, Elsewhere };

  [[noreturn]] static void Refuse(const std::string& reason) { throw DamagedJson("is damaged: " + reason); }

  Place Here() const { return m_places.empty() ? Place::Elsewhere : m_places.back(); }

  Place Enter(JsonType type) {
    if (m_places.empty()) return type == JsonType::Object ? Place::Document : Place::Elsewhere;
    switch (Here()) {
      case Place::Document:
        if (m_name != FindingsMember || type != JsonType::Array) {
          SetHead({type, {}, 0});
          return Place::Elsewhere;
        }
        if (m_hasFindings) Refuse("it has findings twice");
        m_hasFindings = true;
        return Place::Findings;
      case Place::Findings:
        if (type != JsonType::Object) Refuse("finding " + std::to_string(m_count + 1) + " is no object");
        if (m_count == MostAccepted) throw InputProblem("contains more than 1,000,000 findings");
        ++m_count;
        m_hasId = false;
        return Place::Finding;
      case Place::Finding:
        if (m_name == IdMember) AddId({type, {}, 0});
        return Place::Elsewhere;
      case Place::Elsewhere:
        break;
    }
    return Place::Elsewhere;
  }

  void AddId(const JsonScalar& value) {
    if (value.type != JsonType::Text || value.text.empty()) {
      Refuse("the id of finding " + std::to_string(m_count) + " is no text that recognises it");
    }
    if (m_hasId) Refuse("finding " + std::to_string(m_count) + " has two identities");
    m_hasId = true;
    m_baseline.ids.emplace(value.text);
  }

  /// Only the first problem is reported, and only once the file is known to be a baseline.
  void Note(const JsonScalar& value, const char* expected) {
    if (!m_problem.empty()) return;
    m_problem =
        m_name + " is " + std::string(Orvane::JsonTypeName(value.type)) + ", where " + expected + " is expected";
  }

  void SetHead(const JsonScalar& value) {
    if (m_name == SchemaMember) {
      if (value.type != JsonType::Number) return Note(value, "a whole number");
      m_schema = value.number;
    } else if (m_name == VerifiedMember) {
      if (value.type != JsonType::True && value.type != JsonType::False) return Note(value, "true or false");
      m_baseline.isVerified = value.type == JsonType::True;
      m_hasVerified = true;
    } else if (m_name == FindingsMember) {
      Note(value, "an array");
    } else if (std::string* const text = HeadText()) {
      if (value.type != JsonType::Text) return Note(value, "a text");
      *text = value.text;
    }
  }

  /// Where to store the text of a member outside the findings; null for an unknown member.
  std::string* HeadText() {
    Head& head = m_baseline.head;
    for (const auto& [name, text] :
         {std::pair(KindMember, &m_kind), std::pair("tool_version", &head.tool_version), std::pair("host", &head.host),
          std::pair("host_id", &head.host_id), std::pair("windows", &head.windows), std::pair("time", &head.time)}) {
      if (m_name == name) return text;
    }
    return nullptr;
  }

  Baseline m_baseline;
  std::string m_kind;
  std::optional<std::uint64_t> m_schema;
  bool m_hasVerified = false;
  bool m_hasFindings = false;
  std::string m_problem;
  std::vector<Place> m_places;
  /// The name of the member being read.
  std::string m_name;
  /// The number of findings so far, and whether the last one has an identity.
  std::size_t m_count = 0;
  bool m_hasId = false;
};

}  // namespace

std::string BaselineText(const std::vector<Finding>& findings, const Inventory& inventory) {
  Json document = Json::object();
  document[KindMember] = BaselineKind;
  document.update(HeadJson(inventory.head));
  document[VerifiedMember] = IsVerified(inventory);
  document[FindingsMember] = FindingsArray(findings);
  return JsonText(document, true) + "\n";
}

Baseline ReadBaseline(std::streambuf& text) {
  BaselineReader reader;
  try {
    Orvane::ReadJson(text, reader);
  } catch (const DamagedJson&) {
    if (reader.IsBaseline()) throw;
    throw InputProblem("is not a baseline of driverlist");
  }
  return reader.Take();
}

void RequireComparable(const Baseline& baseline, const Inventory& inventory) {
  const std::string& accepted = baseline.head.host_id;
  const std::string& examined = inventory.head.host_id;
  if (!accepted.empty() && !examined.empty() && CompareIgnoringCase(accepted, examined) != 0) {
    throw InputProblem("is the baseline of another machine: its host_id is \"" + accepted + "\", and this is \"" +
                       examined + "\"");
  }
  if (baseline.isVerified && !IsVerified(inventory)) {
    throw InputProblem("was made of verified images, and these are not verified: what it would hide was not looked at");
  }
}

NewFindings NewSince(const Baseline& baseline, std::vector<Finding> findings) {
  NewFindings found;
  for (Finding& finding : findings) {
    // A finding without an identity cannot be recognised again: it is always new.
    if (!finding.id.empty() && baseline.ids.count(finding.id) != 0) {
      ++found.hidden;
    } else {
      found.findings.push_back(std::move(finding));
    }
  }
  return found;
}

}  // namespace inventory
