/// @file
/// The fields of a certificate that are used. Uses no platform API.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trust/bytes.h"

namespace trust {

/// Views into the bytes that were parsed, which must outlive it.
struct X509 {
  Bytes whole;
  /// The to-be-signed part, with its tag.
  Bytes toBeSigned;
  Bytes serial;
  /// Names as they are encoded: equal names are equal bytes.
  Bytes issuer;
  Bytes subject;
  /// Object identifiers.
  std::string signatureAlgorithm;
  std::vector<std::string> usages;
  std::vector<std::string> policies;
};

/// Nullopt if it is not a certificate.
std::optional<X509> ParseX509(Bytes encoded);

/// Whether every key usage in the certificates in `encoded` has at least one bit, as it must. For an empty key usage,
/// Wine 8 reads the byte before its beginning and ends the process.
bool KeyUsagesAreWhole(Bytes encoded);

/// The last common name of an encoded name, otherwise its last organization, otherwise its last organizational unit;
/// UTF-8.
std::string DisplayName(Bytes name);

}  // namespace trust
