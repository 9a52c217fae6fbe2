#include "inventory/snapshot.h"

#include <array>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "inventory/documents.h"
#include "inventory/input.h"
#include "inventory/predicates.h"
#include "inventory/schema1.h"
#include "platform/jsoninput.h"

namespace inventory {
namespace {

using Orvane::DamagedJson;
using Orvane::JsonEvents;
using Orvane::JsonScalar;
using Orvane::JsonType;

constexpr char KindMember[] = "kind";
constexpr char SnapshotKind[] = "driverlist snapshot";
constexpr char SchemaMember[] = "schema_version";
constexpr char LookedUpMember[] = "looked_up";
constexpr char DriversMember[] = "drivers";
constexpr char KnownMember[] = "known";

/// Whether a record stores `member`, rather than deriving it from others.
bool IsOwn(const Member& member) { return !std::holds_alternative<std::string (*)(const Record&)>(member.source); }

/// The members of a file outside the records.
struct Document {
  std::string kind;
  std::optional<std::uint64_t> schema;
  bool hasDrivers = false;
  /// What is wrong with the first member of a wrong type.
  std::string problem;

  bool IsSnapshot() const { return kind == SnapshotKind; }
  /// Whether this version can read its records.
  bool IsReadable() const { return IsSnapshot() && schema && *schema >= 1 && *schema <= SchemaVersion; }
};

std::string Mismatch(const std::string& name, const std::string& found, const std::string& expected) {
  return name + " is " + found + ", but should be " + expected;
}

std::string Described(JsonType type) { return std::string(Orvane::JsonTypeName(type)); }

using Sources = std::map<std::string, Member::Source, std::less<>>;

Sources SourcesOf(std::uint64_t schema) {
  Sources sources;
  if (schema == 1) {
    for (const Schema1Member& member : Schema1Members()) sources.emplace(member.name, member.member);
    return sources;
  }
  for (const Member& member : Members()) {
    if (IsOwn(member)) sources.emplace(member.name, member.source);
  }
  return sources;
}

/// Sets a member of a record to a scalar value. False if the member is of another type.
struct SetScalar {
  Record& record;
  const JsonScalar& value;

  bool operator()(std::string Record::*member) const {
    record.*member = value.text;
    return value.type == JsonType::Text;
  }
  bool operator()(std::optional<std::uint64_t> Record::*member) const {
    record.*member = value.number;
    return value.type == JsonType::Number;
  }
  bool operator()(bool Record::*member) const {
    record.*member = value.type == JsonType::True;
    return value.type == JsonType::True || value.type == JsonType::False;
  }
  template <typename Other>
  bool operator()(Other) const {
    return false;
  }
};

struct ExpectedType {
  const char* operator()(std::string Record::*) const { return "a text"; }
  const char* operator()(std::optional<std::uint64_t> Record::*) const { return "a whole number"; }
  const char* operator()(bool Record::*) const { return "true"; }
  const char* operator()(std::vector<std::string> Record::*) const { return "an array of texts"; }
  const char* operator()(std::string (*)(const Record&)) const { return "nothing"; }
};

/// Makes an inventory of the members of a snapshot.
class SnapshotReader final : public JsonEvents {
 public:
  /// `document` holds what an earlier reading found out about the file.
  SnapshotReader(Document document, const IsSettled& isSettled)
      : m_document(std::move(document)), m_isSettled(isSettled) {}

  const Document& Found() const { return m_document; }
  bool HasReadDrivers() const { return m_hasReadDrivers; }
  Inventory Take() {
    m_inventory.schema = Schema();
    return std::move(m_inventory);
  }

  void Begin(JsonType type) override { m_places.push_back(Enter(type)); }

  void End() override {
    if (Here() == Place::Record) EndRecord();
    m_places.pop_back();
  }

  void Name(const std::string& name) override {
    if (Here() == Place::Elsewhere) return;
    if (Here() == Place::Match) {
      m_matchMember = name;
      return;
    }
    m_name = name;
    if (Here() != Place::Record) return;
    const auto found = m_sources.find(name);
    m_source = found == m_sources.end() ? nullptr : &found->second;
  }

  void Value(const JsonScalar& value) override {
    switch (Here()) {
      case Place::Document:
        SetHead(value);
        break;
      case Place::Drivers:
        RefuseRecord(value.type);
      case Place::Record:
        SetMember(value);
        break;
      case Place::Texts:
        AddText(value);
        break;
      case Place::Matches:
        RefuseMatches(value.type);
        break;
      case Place::Match:
        SetOfMatch(value);
        break;
      case Place::Cves:
        Current().known.back().cves.emplace_back(value.text);
        break;
      case Place::Elsewhere:
        break;
    }
  }

 private:
  enum class Place { Document, Drivers, Record, Texts, Matches, Match, Cves, Elsewhere };

  static std::string Owner(std::size_t number) { return "driver " + std::to_string(number); }

  /// Only for records that can be read.
  unsigned Schema() const { return static_cast<unsigned>(*m_document.schema); }

  Place Here() const { return m_places.empty() ? Place::Elsewhere : m_places.back(); }
  Record& Current() { return m_inventory.records.back(); }
  std::vector<std::string>& Texts() { return Current().*std::get<std::vector<std::string> Record::*>(*m_source); }

  /// The place that an array or an object leads to from here.
  Place Enter(JsonType type) {
    if (m_places.empty()) return type == JsonType::Object ? Place::Document : Place::Elsewhere;
    switch (Here()) {
      case Place::Document:
        if (m_name == DriversMember && type == JsonType::Array) return EnterDrivers();
        SetHead({type, {}, 0});
        break;
      case Place::Drivers:
        if (type != JsonType::Object) RefuseRecord(type);
        return EnterRecord();
      case Place::Record:
        if (type == JsonType::Array && HoldsTexts()) return EnterTexts();
        if (type == JsonType::Array && m_name == KnownMember) return EnterMatches();
        SetMember({type, {}, 0});
        break;
      case Place::Texts:
        AddText({type, {}, 0});
        break;
      case Place::Matches:
        if (type != JsonType::Object) RefuseMatches(type);
        Current().known.emplace_back();
        return Place::Match;
      case Place::Match:
        if (type == JsonType::Array && m_matchMember == "cve") return Place::Cves;
        break;
      case Place::Cves:
      case Place::Elsewhere:
        break;
    }
    return Place::Elsewhere;
  }

  Place EnterDrivers() {
    m_document.hasDrivers = true;
    if (!m_document.IsReadable()) return Place::Elsewhere;
    if (m_hasReadDrivers) throw DamagedJson("is damaged: it has the member drivers twice");
    m_hasReadDrivers = true;
    m_sources = SourcesOf(*m_document.schema);
    return Place::Drivers;
  }

  Place EnterRecord() {
    if (m_count == MostRecords) throw InputProblem("contains more than 1,000,000 drivers");
    ++m_count;
    m_inventory.records.emplace_back();
    m_source = nullptr;
    m_kind.clear();
    m_problem.clear();
    return Place::Record;
  }

  bool HoldsTexts() const {
    return m_source != nullptr && std::holds_alternative<std::vector<std::string> Record::*>(*m_source);
  }

  Place EnterTexts() {
    Texts().clear();
    return Place::Texts;
  }

  Place EnterMatches() {
    Current().known.clear();
    return Place::Matches;
  }

  /// An unknown member, or one with an unknown value, is skipped: later versions may have more of them.
  void SetOfMatch(const JsonScalar& value) {
    trust::KnownMatch& match = Current().known.back();
    for (const auto& [name, text] :
         {std::pair("list", &match.list), std::pair("entry", &match.entry), std::pair("name", &match.name)}) {
      if (m_matchMember == name) *text = value.text;
    }
    if (m_matchMember == "category") match.category = trust::CategoryNamed(value.text).value_or(match.category);
    if (m_matchMember == "match") match.kind = trust::MatchKindNamed(value.text).value_or(match.kind);
  }

  void RefuseMatches(JsonType type) {
    if (m_problem.empty())
      m_problem = Mismatch(m_name, "an array with " + Described(type) + " in it", "an array of objects");
  }

  std::string KindName() const { return std::string(m_document.schema == 1 ? Schema1KindMember : KindMember); }

  /// Where to store the text of a member outside the records; null for an unknown member.
  std::string* HeadText() {
    Head& head = m_inventory.head;
    for (const auto& [name, text] :
         {std::pair(KindMember, &m_document.kind), std::pair("tool_version", &head.tool_version),
          std::pair("host", &head.host), std::pair("host_id", &head.host_id), std::pair("windows", &head.windows),
          std::pair("time", &head.time)}) {
      if (m_name == name) return text;
    }
    return nullptr;
  }

  void SetHead(const JsonScalar& value) {
    if (value.type == JsonType::Null) return;
    if (m_name == SchemaMember) {
      if (value.type != JsonType::Number) return Note(m_document.problem, value.type, "a whole number");
      m_document.schema = value.number;
    } else if (std::string* const text = HeadText()) {
      if (value.type != JsonType::Text) return Note(m_document.problem, value.type, "a text");
      *text = value.text;
    } else if (m_name == LookedUpMember) {
      m_inventory.isLookedUp = value.type == JsonType::True;
    } else if (m_name == DriversMember) {
      Note(m_document.problem, value.type, "an array");
    }
  }

  void SetMember(const JsonScalar& value) {
    if (value.type == JsonType::Null) return;
    if (m_name == KindName()) {
      if (value.type != JsonType::Text) return Note(m_problem, value.type, "a text");
      m_kind = value.text;
    } else if (m_name == KnownMember) {
      Note(m_problem, value.type, "an array of objects");
    } else if (m_source != nullptr && !std::visit(SetScalar{Current(), value}, *m_source)) {
      Note(m_problem, value.type, std::visit(ExpectedType(), *m_source));
    }
  }

  void AddText(const JsonScalar& value) {
    if (value.type == JsonType::Text) {
      Texts().emplace_back(value.text);
    } else if (m_problem.empty()) {
      m_problem = Mismatch(m_name, "an array with " + Described(value.type) + " in it", "an array of texts");
    }
  }

  /// Only the first of several problems is reported.
  void Note(std::string& problem, JsonType found, const std::string& expected) const {
    if (problem.empty()) problem = Mismatch(m_name, Described(found), expected);
  }

  [[noreturn]] void RefuseRecord(JsonType type) const {
    throw DamagedJson("is damaged: " + Mismatch(Owner(m_count + 1), Described(type), "an object"));
  }

  /// Only now is the name of a record with a problem known.
  void EndRecord() {
    Record& record = Current();
    const bool isOfSchema1 = m_document.schema == 1;
    const std::optional<Kind> kind = isOfSchema1 ? Schema1Kind(m_kind, record.name) : KindNamed(m_kind);
    if (!kind && m_problem.empty()) {
      m_problem = m_kind.empty() ? "it has no " + KindName() : "its " + KindName() + " is unknown";
    }
    if (!m_problem.empty()) throw DamagedJson("is damaged: " + NamedOwner() + ": " + m_problem);
    record.kind = *kind;
    // The version that the library gives a device without a driver.
    if (isOfSchema1 && !IsKnownVersion(record.version)) record.version.clear();
    if (m_isSettled && m_isSettled(record, Schema())) m_inventory.records.pop_back();
  }

  /// "driver 3 (smpraid.sys)"
  std::string NamedOwner() {
    constexpr std::size_t longest = 100;
    const std::string& name = Current().name;
    const bool isShown = !name.empty() && name.size() <= longest;
    return Owner(m_count) + (isShown ? " (" + name + ")" : std::string());
  }

  Document m_document;
  const IsSettled& m_isSettled;
  Inventory m_inventory;
  /// The number of records so far, including settled ones.
  std::size_t m_count = 0;
  bool m_hasReadDrivers = false;
  std::vector<Place> m_places;
  /// The name of the member being read, and of the member of a match.
  std::string m_name;
  std::string m_matchMember;
  Sources m_sources;
  /// Where the member of the record is stored; null for an unknown member.
  const Member::Source* m_source = nullptr;
  /// The kind that the record states, and what is wrong with it.
  std::string m_kind;
  std::string m_problem;
};

void Read(std::streambuf& text, SnapshotReader& reader) {
  try {
    Orvane::ReadJson(text, reader);
  } catch (const DamagedJson&) {
    if (reader.Found().IsSnapshot()) throw;
    throw InputProblem("is not a snapshot of driverlist");
  }
}

/// Throws unless it is a snapshot whose records can be read.
void Examine(const Document& document) {
  if (!document.IsSnapshot()) {
    const bool isList = document.kind.empty() && document.schema && document.hasDrivers;
    throw InputProblem(isList ? "is a list, not a snapshot: write one with \"driverlist snapshot\""
                              : "is not a snapshot of driverlist");
  }
  if (document.schema.value_or(0) > SchemaVersion) {
    throw InputProblem("was written by a newer driverlist: its schema version is " + std::to_string(*document.schema) +
                       ", but this driverlist reads only up to " + std::to_string(SchemaVersion));
  }
  if (!document.problem.empty()) throw DamagedJson("is damaged: " + document.problem);
  if (!document.IsReadable()) throw DamagedJson("is damaged: it has no schema_version");
  if (!document.hasDrivers) throw DamagedJson("is damaged: it has no drivers");
}

}  // namespace

std::string SnapshotText(const Inventory& inventory) {
  Json document = Json::object();
  document[KindMember] = SnapshotKind;
  document.update(HeadJson(inventory.head));
  if (inventory.isLookedUp) document[LookedUpMember] = true;
  return ListJson(std::move(document), RecordsJson(inventory.records));
}

Inventory ReadSnapshot(std::streambuf& text, const IsSettled& isSettled) {
  SnapshotReader reader(Document(), isSettled);
  Read(text, reader);
  Examine(reader.Found());
  if (reader.HasReadDrivers()) return reader.Take();
  // The members that say how to read the records came after them.
  SnapshotReader second(reader.Found(), isSettled);
  text.pubseekpos(0, std::ios_base::in);
  Read(text, second);
  return second.Take();
}

}  // namespace inventory
