/// @file
/// The contents of a signature, as encoded by PKCS #7. Uses no platform API, and judges nothing.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trust/bytes.h"
#include "trust/x509.h"

namespace trust {

/// A time stamp: an assertion that a signature existed at that time. The imprint is a digest of the signature for which
/// it was made.
struct TimeStamp {
  /// Object identifier.
  std::string digestAlgorithm;
  Bytes imprint;
  /// UTC, ISO 8601.
  std::string time;
};

/// Views into the bytes that were parsed, which must outlive it.
struct SignerInfo {
  /// The signer: issuer (with its tag) and serial number of the certificate.
  Bytes issuer;
  Bytes serial;
  /// Object identifier.
  std::string digestAlgorithm;
  /// The signed attributes: type and digest of the content, the program's name.
  std::string contentType;
  Bytes messageDigest;
  std::string programName;
  /// The signature value.
  Bytes signature;
  std::vector<TimeStamp> timeStamps;
  /// Nested signatures, encoded.
  std::vector<Bytes> nested;
};

/// Views into the bytes that were parsed, which must outlive it.
struct SignedData {
  /// Object identifier.
  std::string contentType;
  /// The content without its tag and length, which the digest does not cover.
  Bytes content;
  std::vector<X509> certificates;
  SignerInfo signer;

  /// The signer's own certificate; null if it is missing.
  const X509* SignerCertificate() const;
};

/// The digest of an image, as a signature or a catalog lists it.
struct ListedDigest {
  /// Object identifier.
  std::string algorithm;
  Bytes digest;
};

/// Types of signed content: of an image, of a catalog.
inline constexpr std::string_view IndirectDataType = "1.3.6.1.4.1.311.2.1.4";
inline constexpr std::string_view TrustListType = "1.3.6.1.4.1.311.10.1";

/// Nullopt unless it is signed data with at least one signer; the first signer counts.
std::optional<SignedData> ParseSignedData(Bytes encoded);

/// The digest that the content of an image's signature lists.
std::optional<ListedDigest> ParseIndirectData(Bytes content);

/// The encoded signature in the first entry of a certificate table, which is the one that the platform checks; empty if
/// that entry contains no signature.
Bytes FirstSignature(Bytes certificateTable);

}  // namespace trust
