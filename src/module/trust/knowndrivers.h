/// @file
/// Drivers that published lists name as vulnerable or malicious, and whether an image is one of them.
///
/// A list identifies a driver by the hash of its file or image, by its signer with name and version, or by name and
/// version alone. The last is only a hint: lists name drivers of Windows itself, whose other builds are harmless.
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

/// The source of entries. Texts are UTF-8; an unknown text is empty.
struct KnownList {
  std::string name;
  /// The list's own version.
  std::string version;
  /// When it was published, if known: "2024-05-06".
  std::string date;
  std::string licence;
  std::string source;
  std::size_t entries = 0;
};

/// The names that the version resource of an image must have, as far as they are not empty (ignoring the case of ASCII
/// letters), and the inclusive bounds of its version.
struct NameRule {
  std::string originalName;
  std::string internalName;
  std::string productName;
  std::string description;
  FileVersion minimum = 0;
  FileVersion maximum = LastFileVersion;
};

/// The required signer: a certificate that must be in the chain and, unless they are empty, the common name of the
/// signer and the name that the signer gave the program. The certificate often belongs to an authority that countless
/// vendors share.
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
  /// Hashes of files or images, hexadecimal in lower case. The list is not trusted to say which of the two they are;
  /// their length tells the algorithm.
  std::vector<std::string> hashes;
  /// With a signer, one of the names must match too, if there are any. Without a signer, they are hints.
  std::optional<SignerRule> signer;
  std::vector<NameRule> names;
};

/// Lists, indexed for lookups. Lookups do not change it, so several threads may use it.
class KnownDrivers {
 public:
  KnownDrivers() = default;

  const std::vector<KnownList>& Lists() const { return m_lists; }
  const std::vector<KnownEntry>& Entries() const { return m_entries; }

  /// Adds lists with their entries, whose `list` is an index among `lists`.
  void Add(std::vector<KnownList> lists, std::vector<KnownEntry> entries);

  /// The entries that match an image, each with its surest kind of match; malicious ones first, then the surest. Hints
  /// are left out if a hash matches.
  std::vector<KnownMatch> Match(const Hashes& hashes, const Signature& signature, const ImageNames& names) const;

  /// The kinds of hashes in the lists besides SHA-256.
  Wanted WantedHashes() const;

  /// Whether `hash` (hexadecimal, in lower case) is in a list.
  bool KnowsHash(const std::string& hash) const;

 private:
  using Hash = std::pair<std::string, std::size_t>;

  std::vector<KnownList> m_lists;
  std::vector<KnownEntry> m_entries;
  /// The hashes with the entries that have them, sorted.
  std::vector<Hash> m_hashes;
  /// Entries by the hash of the certificate.
  std::unordered_multimap<std::string, std::size_t> m_signers;
  /// Entries whose names are hints by the first name of each, in lower case.
  std::unordered_multimap<std::string, std::size_t> m_hints;
};

}  // namespace trust
