/// @file
/// Whether a driver image is signed, by whom, and whether the signature holds.
///
/// The platform judges. Its word alone is not enough for `Valid`: the chain of certificates must be free of errors too,
/// and both digests, that of the image and that of the signed content, are computed again. Nothing here uses the
/// network, opens a window or asks for anything. Revocation is not looked up.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "trust/catalog.h"
#include "trust/imagehash.h"

namespace trust {

enum class SignatureState {
  /// Could not be judged: the file cannot be read, or the platform's own means failed.
  Unknown,
  /// No signature in the file, and no catalog lists it.
  Unsigned,
  /// There is a signature, and it does not hold.
  Invalid,
  Valid,
};

/// "unknown", "unsigned", "invalid", "valid".
std::string_view NameOf(SignatureState state);

/// Where the signature is.
enum class SignatureKind {
  None,
  /// In the image itself.
  Embedded,
  /// In a catalog that lists the hash of the image.
  Catalog,
};

/// "" for None, "embedded", "catalog".
std::string_view NameOf(SignatureKind kind);

/// One certificate. Hashes are hexadecimal, in lower case.
struct Certificate {
  /// Common name of the subject, UTF-8; its organization where it has no common name.
  std::string subject;
  /// The same of the issuer.
  std::string issuer;
  /// SHA-1 of the certificate.
  std::string thumbprint;
  /// Hash of the to-be-signed part, by the hash algorithm of the certificate's own signature: what signer rules name.
  /// Empty for an algorithm that is not known here.
  std::string tbsHash;
};

/// What one signature says. True only as far as the signature holds.
struct SignerFacts {
  /// "sha1", "sha256", ... of the digest that was signed.
  std::string digestAlgorithm;
  /// Of the certificate that signed: leaf first, up to the root where it is known. Empty when the signer's certificate
  /// is missing.
  std::vector<Certificate> chain;
  /// UTC, ISO 8601, by a time stamp that is made for this very signature; empty without one.
  std::string signedAt;
  /// The name that the signer gave the program (Microsoft's lists call it OEM identifier).
  std::string programName;
  /// Hints of the signer's certificate: Windows hardware quality, attestation, extended validation.
  bool whql = false;
  bool attestation = false;
  bool ev = false;
};

struct Signature {
  SignatureState state = SignatureState::Unknown;
  /// What the state rests on: the platform's code, 0 for `Valid`. Where the platform answers 0 to what does not hold,
  /// the platform's code for what is wrong.
  std::uint32_t code = 0;
  /// A sentence for `code`, the system's where it has one; empty for `Valid`.
  std::string sentence;
  SignatureKind kind = SignatureKind::None;
  /// File name of the catalog; empty for other kinds.
  std::string catalog;
  /// Of the signature that was judged. `chain[0]` is the signer.
  SignerFacts facts;
  /// Further signatures within it, in their order; they are facts and were not judged.
  std::vector<SignerFacts> nested;

  /// Common name, issuer and thumbprint of the signer; empty when it is not known.
  std::string Signer() const;
  std::string Issuer() const;
  std::string Thumbprint() const;
};

/// Judges the file at `path` (full path, UTF-8), whose hashes `HashImage` gave: a signature in the file, or else one in
/// `catalogs`. An image whose own signature does not hold is valid if a catalog's does.
///
/// May be called from several threads, with the same `catalogs`.
Signature Verify(const std::string& path, const Hashes& hashes, const Catalogs& catalogs);

}  // namespace trust
