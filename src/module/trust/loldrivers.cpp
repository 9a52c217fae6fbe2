#include <algorithm>
#include <utility>

#include "trust/knownlistreaders.h"

namespace trust {
namespace {

using Orvane::DamagedJson;
using Orvane::JsonScalar;
using Orvane::JsonType;

bool Contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

/// Turns the array into entries. Unknown members are skipped: the list gains new ones now and then.
class LolReader final : public JsonPaths {
 public:
  bool HasEntries() const { return m_entries.size() > 0 && m_entries.Hashes() > 0; }
  std::vector<KnownEntry> Take() { return m_entries.Take(); }
  const std::string& Latest() const { return m_created; }

 private:
  void OnBegin(std::string_view path, JsonType type) override {
    if (Depth() == 1) {
      if (type != JsonType::Object) Refuse();
      m_entries.Add();
    } else if (path == "KnownVulnerableSamples/") {
      m_name.clear();
      m_version.clear();
    }
  }

  void OnEnd(std::string_view path) override {
    if (Depth() == 1) EndEntry();
    if (path == "KnownVulnerableSamples/") EndSample();
  }

  void OnValue(std::string_view path, const JsonScalar& value) override {
    if (Depth() == 1) Refuse();
    if (value.type != JsonType::Text || value.text.empty()) return;
    constexpr std::string_view sample = "KnownVulnerableSamples//";
    if (path.substr(0, sample.size()) == sample) {
      SetOfSample(path.substr(sample.size()), value.text);
    } else {
      SetOfEntry(path, value.text);
    }
  }

  void SetOfEntry(std::string_view path, std::string_view text) {
    KnownEntry& entry = m_entries.Latest();
    if (path == "Id") {
      entry.id = text;
    } else if (path == "Tags/") {
      if (entry.name.empty()) entry.name = text;
    } else if (path == "Category") {
      entry.category = Contains(text, "malicious") ? Category::Malicious : Category::Vulnerable;
    } else if (path == "CVE" || path == "CVE/" || path == "CVEs" || path == "CVEs/") {
      entry.cves.emplace_back(text);
    } else if (path == "Created") {
      // The days are ISO 8601.
      constexpr std::size_t day = 10;
      m_created = std::max(m_created, std::string(text.substr(0, day)));
    }
  }

  void SetOfSample(std::string_view path, std::string_view text) {
    for (const std::string_view hash :
         {"SHA256", "SHA1", "MD5", "Authentihash/SHA256", "Authentihash/SHA1", "Authentihash/MD5"}) {
      if (path == hash) m_entries.AddHash(text);
    }
    if (path == "OriginalFilename") m_name = text;
    if (path == "FileVersion") m_version = text;
  }

  /// If both are known, they make a hint.
  void EndSample() {
    const std::optional<FileVersion> version = ParseFileVersion(m_version);
    if (m_name.empty() || !version) return;
    NameRule rule;
    rule.originalName = m_name;
    rule.minimum = *version;
    rule.maximum = *version;
    std::vector<NameRule>& names = m_entries.Latest().names;
    const auto isSame = [&rule](const NameRule& other) {
      return other.originalName == rule.originalName && other.minimum == rule.minimum;
    };
    if (std::none_of(names.begin(), names.end(), isSame)) names.push_back(std::move(rule));
  }

  void EndEntry() {
    KnownEntry& entry = m_entries.Latest();
    if (entry.id.empty()) Refuse();
    std::sort(entry.hashes.begin(), entry.hashes.end());
    entry.hashes.erase(std::unique(entry.hashes.begin(), entry.hashes.end()), entry.hashes.end());
  }

  [[noreturn]] void Refuse() const {
    // The first entry decides what this is.
    if (m_entries.Hashes() == 0) throw InputProblem(NotAList);
    throw DamagedJson("is damaged: entry " + std::to_string(m_entries.size()) + " has no Id");
  }

  Entries m_entries;
  /// Members of the sample being read.
  std::string m_name;
  std::string m_version;
  /// The day of the newest entry.
  std::string m_created;
};

}  // namespace

KnownContent ReadLolDrivers(std::streambuf& json) {
  LolReader reader;
  try {
    Orvane::ReadJson(json, reader);
  } catch (const DamagedJson&) {
    if (reader.HasEntries()) throw;
    throw InputProblem(NotAList);
  }
  if (!reader.HasEntries()) throw InputProblem(NotAList);
  KnownContent content;
  content.lists.push_back({"LOLDrivers", "", reader.Latest(), "Apache-2.0", "https://www.loldrivers.io", 0});
  content.entries = reader.Take();
  content.lists.front().entries = content.entries.size();
  return content;
}

}  // namespace trust
