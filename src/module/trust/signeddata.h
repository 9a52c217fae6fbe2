/// @file
/// What a signature holds, as PKCS #7 encodes it. Needs nothing of the platform, and judges nothing.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trust/bytes.h"
#include "trust/x509.h"

namespace trust {

/// A time stamp: somebody's word that a signature existed then. The imprint is a digest of the signature it was made
/// for.
struct TimeStamp {
  /// Object identifier.
  std::string digestAlgorithm;
  Bytes imprint;
  /// UTC, ISO 8601.
  std::string time;
};

/// Views into the bytes that were parsed, which must outlive it.
struct SignerInfo {
  /// Whose signature it is: issuer (with its tag) and serial number of the certificate.
  Bytes issuer;
  Bytes serial;
  /// Object identifier.
  std::string digestAlgorithm;
  /// The signed attributes: type and digest of the content, the program's name.
  std::string contentType;
  Bytes messageDigest;
  std::string programName;
  /// The signature proper.
  Bytes signature;
  std::vector<TimeStamp> timeStamps;
  /// Signatures within it, encoded.
  std::vector<Bytes> nested;
};

/// Views into the bytes that were parsed, which must outlive it.
struct SignedData {
  /// Object identifier.
  std::string contentType;
  /// The content without tag and length, which its digest does not cover.
  Bytes content;
  std::vector<X509> certificates;
  SignerInfo signer;

  /// The signer's own certificate; null when it is missing.
  const X509* SignerCertificate() const;
};

/// The digest of an image, as a signature or a catalog lists it.
struct ListedDigest {
  /// Object identifier.
  std::string algorithm;
  Bytes digest;
};

/// Types of signed content: that of an image, that of a catalog.
inline constexpr std::string_view IndirectDataType = "1.3.6.1.4.1.311.2.1.4";
inline constexpr std::string_view TrustListType = "1.3.6.1.4.1.311.10.1";

/// Nothing for what is not signed data with one signer at least; the first one counts.
std::optional<SignedData> ParseSignedData(Bytes encoded);

/// The digest that the content of an image's signature lists.
std::optional<ListedDigest> ParseIndirectData(Bytes content);

/// The encoded signature in the first entry of a certificate table, which is the one that the platform judges; empty
/// where that entry holds none.
Bytes FirstSignature(Bytes certificateTable);

}  // namespace trust
