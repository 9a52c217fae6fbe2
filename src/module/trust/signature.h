/// @file
/// Whether a driver image is signed, by whom, and whether the signature is valid.
///
/// The platform checks the signature. Its verdict alone is not enough for `Valid`: the chain of certificates must be
/// free of errors too, and the digests of the image and of the signed content, which are computed again here, must
/// agree. Nothing here uses the network, opens a window or prompts the user. Revocation is not checked.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "trust/catalog.h"
#include "trust/imagehash.h"

namespace trust {

enum class SignatureState {
  /// Could not be checked: the file cannot be read, or the platform failed.
  Unknown,
  /// No signature in the file, and no catalog lists it.
  Unsigned,
  /// There is a signature, but it is not valid.
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
  /// Common name of the subject, UTF-8; its organization if it has no common name.
  std::string subject;
  /// The same of the issuer.
  std::string issuer;
  /// SHA-1 of the certificate.
  std::string thumbprint;
  /// Hash of the to-be-signed part, with the hash algorithm of the certificate's own signature; signer rules contain
  /// this hash. Empty if the algorithm is unknown here.
  std::string tbsHash;
};

/// The contents of one signature. They can be trusted only if the signature is valid.
struct SignerFacts {
  /// Algorithm of the signed digest: "sha1", "sha256", ...
  std::string digestAlgorithm;
  /// Chain of the signing certificate: leaf first, up to the root if that is known. Empty if the signer's certificate
  /// is missing.
  std::vector<Certificate> chain;
  /// UTC, ISO 8601, from a time stamp that was made for this very signature; empty without a time stamp.
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
  /// The reason for the state: the platform's code, 0 for `Valid`. If the platform returns 0 for an invalid signature,
  /// the platform's code for the fault that was found.
  std::uint32_t code = 0;
  /// A sentence for `code`, the system's message if there is one; empty for `Valid`.
  std::string sentence;
  SignatureKind kind = SignatureKind::None;
  /// File name of the catalog; empty for other kinds.
  std::string catalog;
  /// The facts of the signature that was checked. `chain[0]` is the signer.
  SignerFacts facts;
  /// Further signatures nested in it, in order; these were not checked.
  std::vector<SignerFacts> nested;

  /// Common name, issuer and thumbprint of the signer; empty if unknown.
  std::string Signer() const;
  std::string Issuer() const;
  std::string Thumbprint() const;
};

/// Checks the file at `path` (full path, UTF-8), whose hashes come from `HashImage`: the signature in the file,
/// otherwise a signature in `catalogs`. An image whose own signature is not valid is valid if the signature of a
/// catalog is.
///
/// May be called from several threads, with the same `catalogs`.
Signature Verify(const std::string& path, const Hashes& hashes, const Catalogs& catalogs);

}  // namespace trust
