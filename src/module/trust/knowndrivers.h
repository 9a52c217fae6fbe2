/// @file
/// Drivers that published lists know as vulnerable or malicious, and whether an image is one of them.
///
/// A list knows a driver by the hash of its file or image, by who signed it under which name and version, or by name
/// and version alone. The last is no more than a hint: lists name drivers of Windows itself, whose other builds are in
/// order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "trust/imagehash.h"
#include "trust/imagenames.h"
#include "trust/knownmatch.h"

namespace trust {

struct Signature;

/// Where entries are from. Texts are UTF-8; unknown is empty.
struct KnownList {
  std::string name;
  /// The list's own version.
  std::string version;
  /// When it was published, as far as it is known: "2024-05-06".
  std::string date;
  std::string licence;
  std::string source;
  std::size_t entries = 0;
};

/// What the version resource of an image must say: every name that is not empty, in any case of ASCII letters, and a
/// version within the bounds, which are inclusive.
struct NameRule {
  std::string originalName;
  std::string internalName;
  std::string productName;
  std::string description;
  FileVersion minimum = 0;
  FileVersion maximum = LastFileVersion;
};

/// Who must have signed: the certificate somewhere in the chain and, as far as they are not empty, the common name of
/// the signer and the name that the signer gave the program. The certificate is often that of an authority which
/// countless vendors share.
struct SignerRule {
  /// Hash of the to-be-signed part, hexadecimal in lower case.
  std::string tbsHash;
  std::string publisher;
  std::string programName;
};

/// One driver, or one rule, of a list.
struct KnownEntry {
  /// Index among the lists.
  std::size_t list = 0;
  std::string id;
  /// For people.
  std::string name;
  Category category = Category::Vulnerable;
  std::vector<std::string> cves;
  /// Of files or images: hexadecimal in lower case. What they are hashes of is not trusted to the list, and by which
  /// algorithm is seen by their length.
  std::vector<std::string> hashes;
  /// With a signer, one of the names must hold too, unless there are none. Without one, they are hints.
  std::optional<SignerRule> signer;
  std::vector<NameRule> names;
};

/// Some lists, ready to be asked. Does not change while it is asked: several threads may.
class KnownDrivers {
 public:
  KnownDrivers() = default;

  const std::vector<KnownList>& Lists() const { return m_lists; }
  const std::vector<KnownEntry>& Entries() const { return m_entries; }

  /// Adds lists with their entries, whose `list` is an index among `lists`.
  void Add(std::vector<KnownList> lists, std::vector<KnownEntry> entries);

  /// The entries that know an image, each by the surest of its ways; malicious ones first, then the surest. Hints are
  /// left out where a hash is known.
  std::vector<KnownMatch> Match(const Hashes& hashes, const Signature& signature, const ImageNames& names) const;

  /// The hashes that the lists have beside SHA-256.
  Wanted WantedHashes() const;

  /// Whether `hash` (hexadecimal, in lower case) is in a list.
  bool KnowsHash(const std::string& hash) const;

 private:
  using Hash = std::pair<std::string, std::size_t>;

  std::vector<KnownList> m_lists;
  std::vector<KnownEntry> m_entries;
  /// With the entries that have them, sorted.
  std::vector<Hash> m_hashes;
  /// Entries by the hash of the certificate.
  std::unordered_multimap<std::string, std::size_t> m_signers;
  /// Entries whose names are hints by the first name of each, in lower case.
  std::unordered_multimap<std::string, std::size_t> m_hints;
};

}  // namespace trust
