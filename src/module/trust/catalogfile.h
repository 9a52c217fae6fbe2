/// @file
/// A catalog as a file: its signer and the digests that it lists.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>

#include "trust/signaturestate.h"
#include "trust/signeddata.h"

namespace trust {

/// Refers to its own bytes, so it cannot be moved.
class CatalogFile {
 public:
  /// `path` is a full path, UTF-8. A file that cannot be read or is not a catalog lists nothing.
  explicit CatalogFile(const std::string& path);
  CatalogFile(const CatalogFile&) = delete;
  CatalogFile& operator=(const CatalogFile&) = delete;

  /// The whole file.
  Bytes Encoded() const { return m_bytes; }
  /// Nullopt if it is not a catalog.
  const std::optional<SignedData>& Data() const { return m_data; }
  /// The digests that it lists, as bytes.
  const std::set<Bytes>& Digests() const { return m_digests; }
  /// Compares the digest of the list with the signed digest.
  DigestCheck Content() const { return m_content; }

 private:
  std::string m_bytes;
  std::optional<SignedData> m_data;
  std::set<Bytes> m_digests;
  DigestCheck m_content = DigestCheck::NotKnown;
};

}  // namespace trust
