/// @file
/// What is read of a certificate. Needs nothing of the platform.
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

/// Nothing for what is no certificate.
std::optional<X509> ParseX509(Bytes encoded);

/// Whether every key usage in `encoded`, which holds certificates, has a bit at least, as it must. Wine 8 reads the
/// byte before the first of an empty one and ends the process.
bool KeyUsagesAreWhole(Bytes encoded);

/// The last common name of a name as it is encoded, or else its last organization, or else its last organizational
/// unit; UTF-8.
std::string DisplayName(Bytes name);

}  // namespace trust
