/// @file
/// What the platform says of a signature. No network, no window, no revocation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "trust/bytes.h"

namespace trust {

struct PlatformVerdict {
  /// WinVerifyTrust's answer.
  std::uint32_t code = 0;
  /// Whether it showed the chain of certificates; then its errors (CERT_TRUST_...) and the encoded certificates, the
  /// signer's first.
  bool hasChain = false;
  std::uint32_t chainErrors = 0;
  std::vector<std::string> chain;
};

/// The signature in the file at `path` (full path, UTF-8), which may be an image or a catalog; `encoded` is what the
/// file holds of it. A certificate that may end the process makes it CRYPT_E_ASN1_CORRUPT, and the platform is not
/// asked.
PlatformVerdict AskAboutFile(const std::string& path, Bytes encoded);

/// A file of a catalog.
struct CatalogMember {
  /// Full paths, UTF-8.
  std::string catalog;
  std::string file;
  /// The hash by which the catalog lists the file, as bytes.
  std::string hash;
  /// The platform's catalog administrator (HCATADMIN) for that kind of hash.
  void* administrator = nullptr;
};

/// The signature of the catalog, as that of its member.
PlatformVerdict AskAboutMember(const CatalogMember& member);

}  // namespace trust
