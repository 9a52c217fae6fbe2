#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <new>
#include <pugixml.hpp>
#include <set>

#include "trust/knownlistreaders.h"

namespace trust {
namespace {

using pugi::xml_attribute;
using pugi::xml_node;

[[noreturn]] void Damaged(const std::string& what) { throw InputProblem("is damaged: " + what); }

/// A policy can contain restrictions that are not checked here, and a rule without its restriction would match too
/// much.
[[noreturn]] void Unknown(const std::string& id, const std::string& what) {
  throw InputProblem("contains a rule that cannot be checked: " + id + " has " + what);
}

bool IsNamed(const xml_node& node, std::string_view name) { return node.name() == name; }

std::string Text(const xml_node& node, const char* attribute) { return node.attribute(attribute).value(); }

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

/// Only the name of its rule tells that a hash is one of an image's pages.
bool IsOfPages(const xml_node& rule) {
  return Lower(Text(rule, "FriendlyName")).find("hash page") != std::string::npos;
}

/// "ASIO32.sys" of "ASIO32.sys Hash Sha1" or "ASIO32.sys\05f052_4045ae Hash Sha1".
std::string DriverName(const std::string& friendlyName) {
  std::string name = friendlyName.substr(0, friendlyName.find('\\'));
  for (const char* const ending : {" Hash ", " FileAttribute", " FileRule"}) name = name.substr(0, name.find(ending));
  return name.substr(0, name.find_last_not_of(' ') + 1);
}

/// An identifier such as "CVE-2018-5701", anywhere in the text.
std::vector<std::string> CvesIn(const std::string& text) {
  std::vector<std::string> cves;
  for (std::size_t at = text.find("CVE-"); at != std::string::npos; at = text.find("CVE-", at + 1)) {
    const std::size_t end = std::min(text.find_first_not_of("0123456789-", at + 4), text.size());
    if (end > at + 8) cves.push_back(text.substr(at, end - at));
  }
  return cves;
}

FileVersion VersionIn(const xml_node& rule, const char* attribute, FileVersion unless) {
  const std::string text = Text(rule, attribute);
  if (text.empty()) return unless;
  const std::optional<FileVersion> version = ParseFileVersion(text);
  if (!version) Damaged("the " + std::string(attribute) + " of " + Text(rule, "ID") + " is not a version");
  return *version;
}

constexpr std::array<std::string_view, 8> NameAttributes = {
    "ID",          "FriendlyName",    "FileName",           "InternalName",
    "ProductName", "FileDescription", "MinimumFileVersion", "MaximumFileVersion"};

/// What a FileAttrib, or a Deny without a hash, demands of the version resource.
NameRule NameRuleOf(const xml_node& rule) {
  for (const xml_attribute& attribute : rule.attributes()) {
    if (std::find(NameAttributes.begin(), NameAttributes.end(), attribute.name()) == NameAttributes.end()) {
      Unknown(Text(rule, "ID"), attribute.name());
    }
  }
  NameRule names;
  names.originalName = Text(rule, "FileName");
  names.internalName = Text(rule, "InternalName");
  names.productName = Text(rule, "ProductName");
  names.description = Text(rule, "FileDescription");
  names.minimum = VersionIn(rule, "MinimumFileVersion", 0);
  names.maximum = VersionIn(rule, "MaximumFileVersion", LastFileVersion);
  return names;
}

bool HasName(const NameRule& rule) {
  return !rule.originalName.empty() || !rule.internalName.empty() || !rule.productName.empty() ||
         !rule.description.empty();
}

/// The policy's rules for the kernel.
class PolicyReader {
 public:
  explicit PolicyReader(const xml_node& policy) : m_policy(policy) {
    for (const xml_node& rule : policy.child("FileRules").children()) m_rules.emplace(Text(rule, "ID"), rule);
    for (const xml_node& signer : policy.child("Signers").children("Signer")) {
      m_signers.emplace(Text(signer, "ID"), signer);
    }
  }

  std::vector<KnownEntry> Read() {
    for (const xml_node& scenario : m_policy.child("SigningScenarios").children("SigningScenario")) {
      // The scenario of drivers. The other one, 12, is that of programs.
      if (Text(scenario, "Value") == "131") ReadScenario(scenario.child("ProductSigners"));
    }
    return m_entries.Take();
  }

 private:
  void ReadScenario(const xml_node& rules) {
    for (const xml_node& reference : rules.child("FileRulesRef").children("FileRuleRef")) {
      const xml_node rule = Find(m_rules, Text(reference, "RuleID"));
      if (IsNamed(rule, "Deny") && !IsOfPages(rule) && IsNew(rule)) AddFileRule(rule);
    }
    for (const xml_node& denied : rules.child("DeniedSigners").children("DeniedSigner")) {
      const std::string id = Text(denied, "SignerId");
      if (denied.first_child()) Unknown(id, denied.first_child().name());
      const xml_node signer = Find(m_signers, id);
      if (IsNew(signer)) AddSigner(signer);
    }
  }

  /// A policy may name a rule more than once.
  bool IsNew(const xml_node& rule) { return m_taken.insert(Text(rule, "ID")).second; }

  static xml_node Find(const std::map<std::string, xml_node>& nodes, const std::string& id) {
    const auto found = nodes.find(id);
    if (found == nodes.end()) Damaged("there is no rule \"" + id + "\"");
    return found->second;
  }

  KnownEntry& Add(const xml_node& node, const std::string& friendlyName) {
    KnownEntry& entry = m_entries.Add();
    entry.id = Text(node, "ID");
    entry.name = DriverName(friendlyName);
    entry.cves = CvesIn(friendlyName);
    return entry;
  }

  void AddFileRule(const xml_node& rule) {
    KnownEntry& entry = Add(rule, Text(rule, "FriendlyName"));
    if (const xml_attribute hash = rule.attribute("Hash")) {
      m_entries.AddHash(hash.value());
      if (entry.hashes.empty()) Damaged("the Hash of " + entry.id + " is not a hash");
      return;
    }
    entry.names.push_back(NameRuleOf(rule));
    if (!HasName(entry.names.back())) Unknown(entry.id, "no name");
  }

  void AddSigner(const xml_node& signer) {
    KnownEntry& entry = Add(signer, Text(signer, "Name"));
    SignerRule rule;
    for (const xml_node& part : signer.children()) {
      if (IsNamed(part, "CertRoot")) {
        if (Text(part, "Type") != "TBS") Unknown(entry.id, "a root by name");
        rule.tbsHash = HashIn(Text(part, "Value"));
      } else if (IsNamed(part, "CertPublisher")) {
        rule.publisher = Text(part, "Value");
      } else if (IsNamed(part, "CertOemID")) {
        rule.programName = Text(part, "Value");
      } else if (IsNamed(part, "FileAttribRef")) {
        entry.names.push_back(NameRuleOf(Find(m_rules, Text(part, "RuleID"))));
      } else if (part.type() == pugi::node_element) {
        Unknown(entry.id, part.name());
      }
    }
    if (rule.tbsHash.empty()) Damaged("the signer " + entry.id + " has no hash");
    entry.signer = std::move(rule);
    // The policy names the signer after the authority.
    if (!entry.signer->publisher.empty()) entry.name = entry.signer->publisher;
    if (entry.names.size() == 1 && !entry.names.front().originalName.empty()) {
      entry.name = entry.names.front().originalName;
    }
  }

  xml_node m_policy;
  std::map<std::string, xml_node> m_rules;
  std::map<std::string, xml_node> m_signers;
  std::set<std::string> m_taken;
  Entries m_entries;
};

}  // namespace

KnownContent ReadPolicy(const std::string& xml) {
  pugi::xml_document document;
  // Nothing that a document type could define is looked at; a policy has no use for one.
  const pugi::xml_parse_result parsed =
      document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_doctype, pugi::encoding_utf8);
  const xml_node policy = document.child("SiPolicy");
  if (parsed.status == pugi::status_out_of_memory) throw std::bad_alloc();
  if (!policy) throw InputProblem(NotAList);
  for (const xml_node& node : document.children()) {
    if (node.type() == pugi::node_doctype) throw InputProblem("has a document type, which no policy needs");
  }
  if (!parsed) Damaged(std::string(parsed.description()) + " at byte " + std::to_string(parsed.offset));
  KnownContent content;
  content.entries = PolicyReader(policy).Read();
  if (content.entries.empty()) throw InputProblem("is a policy that denies no driver");
  content.lists.push_back({"Microsoft", policy.child_value("VersionEx"), "", "as published by Microsoft",
                           "https://aka.ms/VulnerableDriverBlockList", content.entries.size()});
  return content;
}

}  // namespace trust
