#include <nlohmann/json.hpp>
#include <set>

#include "trust/knownlistreaders.h"

namespace trust {
namespace {

using Json = nlohmann::ordered_json;
using Orvane::DamagedJson;
using Orvane::JsonScalar;
using Orvane::JsonType;

constexpr std::string_view Format = "known drivers";
constexpr std::uint64_t FormatVersion = 1;

// --- Writing

void AddText(Json& object, const char* name, const std::string& text) {
  if (!text.empty()) object[name] = text;
}

Json JsonOf(const KnownList& list) {
  Json json = {{"name", list.name}};
  AddText(json, "version", list.version);
  AddText(json, "date", list.date);
  AddText(json, "licence", list.licence);
  AddText(json, "source", list.source);
  json["entries"] = list.entries;
  return json;
}

Json JsonOf(const NameRule& rule) {
  Json json = Json::object();
  AddText(json, "original", rule.originalName);
  AddText(json, "internal", rule.internalName);
  AddText(json, "product", rule.productName);
  AddText(json, "description", rule.description);
  if (rule.minimum != 0) json["min"] = FileVersionText(rule.minimum);
  if (rule.maximum != LastFileVersion) json["max"] = FileVersionText(rule.maximum);
  return json;
}

Json JsonOf(const KnownEntry& entry) {
  Json json = {{"list", entry.list}, {"id", entry.id}};
  AddText(json, "name", entry.name);
  if (entry.category == Category::Malicious) json["malicious"] = true;
  if (!entry.cves.empty()) json["cve"] = entry.cves;
  if (entry.signer) {
    json["tbs"] = entry.signer->tbsHash;
    AddText(json, "publisher", entry.signer->publisher);
    AddText(json, "program", entry.signer->programName);
  }
  if (!entry.hashes.empty()) json["hashes"] = entry.hashes;
  for (const NameRule& rule : entry.names) json["names"].push_back(JsonOf(rule));
  return json;
}

std::string Line(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

template <typename Items>
std::string Lines(const Items& items) {
  std::string lines;
  for (const auto& item : items) lines += (lines.empty() ? "\n" : ",\n") + Line(JsonOf(item));
  return lines;
}

// --- Reading

class CompactReader final : public JsonPaths {
 public:
  bool IsCompactList() const { return m_format == Format; }

  KnownContent Take() {
    if (!IsCompactList()) throw InputProblem(NotAList);
    if (m_version != FormatVersion) {
      throw InputProblem("is a list of format version " + std::to_string(m_version) +
                         ", but this driverlist reads version " + std::to_string(FormatVersion));
    }
    KnownContent content;
    content.entries = m_entries.Take();
    std::vector<std::size_t> counts(m_lists.size());
    for (const KnownEntry& entry : content.entries) {
      if (entry.list >= counts.size()) throw DamagedJson("is damaged: " + entry.id + " belongs to no list");
      ++counts[entry.list];
    }
    for (std::size_t i = 0; i < counts.size(); ++i) {
      if (counts[i] == m_lists[i].entries) continue;
      throw DamagedJson("is damaged: " + m_lists[i].name + " has " + std::to_string(counts[i]) +
                        " entries instead of " + std::to_string(m_lists[i].entries));
    }
    content.lists = std::move(m_lists);
    return content;
  }

 private:
  void OnBegin(std::string_view path, JsonType type) override {
    if (type != JsonType::Object) return;
    if (path == "lists/") {
      if (m_lists.size() == MostLists) throw InputProblem("contains more than 1,000 lists");
      m_lists.emplace_back();
    }
    if (path == "entries/") m_entries.Add();
    // There may be no entry, since a member name can look like a path.
    if (path == "entries//names/" && m_entries.size() > 0) m_entries.Latest().names.emplace_back();
  }

  void OnEnd(std::string_view path) override {
    if (path == "entries/" && (m_entries.size() == 0 || m_entries.Latest().id.empty())) Refuse("has no id");
  }

  void OnValue(std::string_view path, const JsonScalar& value) override {
    constexpr std::string_view lists = "lists//";
    constexpr std::string_view entries = "entries//";
    if (path == "format") m_format = value.text;
    if (path == "version") m_version = value.number;
    if (path.substr(0, lists.size()) == lists) SetOfList(path.substr(lists.size()), value);
    if (path.substr(0, entries.size()) == entries) SetOfEntry(path.substr(entries.size()), value);
  }

  void SetOfList(std::string_view path, const JsonScalar& value) {
    if (m_lists.empty()) return;
    KnownList& list = m_lists.back();
    if (path == "name") list.name = value.text;
    if (path == "version") list.version = value.text;
    if (path == "date") list.date = value.text;
    if (path == "licence") list.licence = value.text;
    if (path == "source") list.source = value.text;
    if (path == "entries") list.entries = static_cast<std::size_t>(value.number);
  }

  void SetOfEntry(std::string_view path, const JsonScalar& value) {
    if (m_entries.size() == 0) return;
    KnownEntry& entry = m_entries.Latest();
    constexpr std::string_view names = "names//";
    if (path.substr(0, names.size()) == names && !entry.names.empty()) {
      return SetName(path.substr(names.size()), value, entry.names.back());
    }
    if (path == "list") entry.list = static_cast<std::size_t>(value.number);
    if (path == "id") entry.id = value.text;
    if (path == "name") entry.name = value.text;
    if (path == "malicious" && value.type == JsonType::True) entry.category = Category::Malicious;
    if (path == "cve/") entry.cves.emplace_back(value.text);
    if (path == "hashes/") AddHash(value);
    if (path == "tbs") SignerOf(entry).tbsHash = value.text;
    if (path == "publisher") SignerOf(entry).publisher = value.text;
    if (path == "program") SignerOf(entry).programName = value.text;
  }

  void AddHash(const JsonScalar& value) {
    const std::size_t before = m_entries.Hashes();
    m_entries.AddHash(value.text);
    if (m_entries.Hashes() == before) Refuse("has an invalid hash");
  }

  void SetName(std::string_view path, const JsonScalar& value, NameRule& rule) const {
    if (path == "original") rule.originalName = value.text;
    if (path == "internal") rule.internalName = value.text;
    if (path == "product") rule.productName = value.text;
    if (path == "description") rule.description = value.text;
    if (path == "min") rule.minimum = Version(value);
    if (path == "max") rule.maximum = Version(value);
  }

  FileVersion Version(const JsonScalar& value) const {
    const std::optional<FileVersion> version = ParseFileVersion(value.text);
    if (!version) Refuse("has an invalid version");
    return *version;
  }

  static SignerRule& SignerOf(KnownEntry& entry) {
    if (!entry.signer) entry.signer.emplace();
    return *entry.signer;
  }

  [[noreturn]] void Refuse(const std::string& what) const {
    throw DamagedJson("is damaged: entry " + std::to_string(m_entries.size()) + " " + what);
  }

  static constexpr std::size_t MostLists = 1000;

  std::string m_format;
  std::uint64_t m_version = 0;
  std::vector<KnownList> m_lists;
  Entries m_entries;
};

}  // namespace

std::string CompactList(const KnownDrivers& known) {
  return R"({"format":")" + std::string(Format) + R"(","version":)" + std::to_string(FormatVersion) + ",\n\"lists\":[" +
         Lines(known.Lists()) + "],\n\"entries\":[" + Lines(known.Entries()) + "]}\n";
}

KnownContent ReadCompactList(std::streambuf& json) {
  CompactReader reader;
  try {
    Orvane::ReadJson(json, reader);
  } catch (const DamagedJson&) {
    if (reader.IsCompactList()) throw;
    throw InputProblem(NotAList);
  }
  return reader.Take();
}

}  // namespace trust
