#include "trust/knowndrivers.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "trust/signature.h"

namespace trust {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return Lower(c); });
  return text;
}

bool IsEqual(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

/// If there is a rule, it must hold.
bool Holds(std::string_view rule, std::string_view text) { return rule.empty() || rule == "*" || IsEqual(rule, text); }

bool IsWithin(const NameRule& rule, const std::optional<FileVersion>& version) {
  if (rule.minimum == 0 && rule.maximum == LastFileVersion) return true;
  return version && *version >= rule.minimum && *version <= rule.maximum;
}

bool Holds(const NameRule& rule, const ImageNames& names) {
  return Holds(rule.originalName, names.originalName) && Holds(rule.internalName, names.internalName) &&
         Holds(rule.productName, names.productName) && Holds(rule.description, names.description) &&
         IsWithin(rule, names.version);
}

bool HoldsOne(const std::vector<NameRule>& rules, const ImageNames& names) {
  return std::any_of(rules.begin(), rules.end(), [&names](const NameRule& rule) { return Holds(rule, names); });
}

/// The certificate that the rule names is already known to be in the chain.
bool Holds(const SignerRule& rule, const SignerFacts& signer) {
  return (rule.publisher.empty() || (!signer.chain.empty() && rule.publisher == signer.chain.front().subject)) &&
         (rule.programName.empty() || rule.programName == signer.programName);
}

/// What hints are looked up by: a name, and which of an image's names it is.
std::string HintKey(char which, const std::string& name) { return which + Lower(name); }

std::string HintKey(const NameRule& rule) {
  if (!rule.originalName.empty()) return HintKey('o', rule.originalName);
  if (!rule.internalName.empty()) return HintKey('i', rule.internalName);
  if (!rule.productName.empty()) return HintKey('p', rule.productName);
  return HintKey('d', rule.description);
}

/// The most certain way in which each entry matches the image.
using Kinds = std::map<std::size_t, MatchKind>;

void Note(Kinds& kinds, std::size_t entry, MatchKind kind) {
  const auto [found, isNew] = kinds.emplace(entry, kind);
  if (!isNew) found->second = std::min(found->second, kind);
}

}  // namespace

void KnownDrivers::Add(std::vector<KnownList> lists, std::vector<KnownEntry> entries) {
  const std::size_t firstList = m_lists.size();
  m_lists.insert(m_lists.end(), std::make_move_iterator(lists.begin()), std::make_move_iterator(lists.end()));
  for (KnownEntry& added : entries) {
    const std::size_t place = m_entries.size();
    added.list += firstList;
    for (const std::string& hash : added.hashes) m_hashes.emplace_back(hash, place);
    if (added.signer) {
      m_signers.emplace(added.signer->tbsHash, place);
    } else {
      for (const NameRule& rule : added.names) m_hints.emplace(HintKey(rule), place);
    }
    m_entries.push_back(std::move(added));
  }
  std::sort(m_hashes.begin(), m_hashes.end());
}

Wanted KnownDrivers::WantedHashes() const {
  constexpr std::size_t md5 = 32;
  constexpr std::size_t sha1 = 40;
  const auto has = [this](std::size_t length) {
    return std::any_of(m_hashes.begin(), m_hashes.end(),
                       [length](const Hash& hash) { return hash.first.size() == length; });
  };
  return {has(sha1), has(md5), has(sha1), has(md5)};
}

bool KnownDrivers::KnowsHash(const std::string& hash) const {
  const auto found = std::lower_bound(m_hashes.begin(), m_hashes.end(), Hash(hash, 0));
  return found != m_hashes.end() && found->first == hash;
}

std::vector<KnownMatch> KnownDrivers::Match(const Hashes& hashes, const Signature& signature,
                                            const ImageNames& names) const {
  Kinds kinds;
  const auto matchHash = [&](const std::string& hash, MatchKind kind) {
    if (hash.empty()) return;
    auto found = std::lower_bound(m_hashes.begin(), m_hashes.end(), Hash(hash, 0));
    for (; found != m_hashes.end() && found->first == hash; ++found) Note(kinds, found->second, kind);
  };
  for (const std::string* hash : {&hashes.fileSha256, &hashes.fileSha1, &hashes.fileMd5}) {
    matchHash(*hash, MatchKind::FileHash);
  }
  for (const std::string* hash : {&hashes.imageSha256, &hashes.imageSha1, &hashes.imageMd5}) {
    matchHash(*hash, MatchKind::ImageHash);
  }
  const bool isHashKnown = !kinds.empty();

  const auto matchSigner = [&](const SignerFacts& signer) {
    for (const Certificate& certificate : signer.chain) {
      const auto [begin, end] = m_signers.equal_range(certificate.tbsHash);
      for (auto at = begin; at != end && !certificate.tbsHash.empty(); ++at) {
        const KnownEntry& entry = m_entries[at->second];
        if (!Holds(*entry.signer, signer)) continue;
        if (entry.names.empty() || HoldsOne(entry.names, names)) Note(kinds, at->second, MatchKind::SignerRule);
      }
    }
  };
  matchSigner(signature.facts);
  for (const SignerFacts& nested : signature.nested) matchSigner(nested);

  const auto matchName = [&](char which, const std::string& name) {
    if (name.empty()) return;
    const auto [begin, end] = m_hints.equal_range(HintKey(which, name));
    for (auto at = begin; at != end; ++at) {
      if (HoldsOne(m_entries[at->second].names, names)) Note(kinds, at->second, MatchKind::NameAndVersion);
    }
  };
  if (!isHashKnown) {
    matchName('o', names.originalName);
    matchName('i', names.internalName);
    matchName('p', names.productName);
    matchName('d', names.description);
  }

  std::vector<KnownMatch> matches;
  for (const auto& [place, kind] : kinds) {
    const KnownEntry& entry = m_entries[place];
    matches.push_back({m_lists[entry.list].name, entry.id, entry.name, entry.category, kind, entry.cves});
  }
  std::stable_sort(matches.begin(), matches.end(), [](const KnownMatch& a, const KnownMatch& b) {
    return std::tuple(b.category, a.kind) < std::tuple(a.category, b.kind);
  });
  return matches;
}

}  // namespace trust
