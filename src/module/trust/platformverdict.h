/// @file
/// The verdict of the platform on a signature. No network, no window, no revocation check.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "trust/bytes.h"

namespace trust {

struct PlatformVerdict {
  /// The result of WinVerifyTrust.
  std::uint32_t code = 0;
  /// Whether it reported the chain of certificates; if so, the errors of the chain (CERT_TRUST_...) and the encoded
  /// certificates, the signer's first.
  bool hasChain = false;
  std::uint32_t chainErrors = 0;
  std::vector<std::string> chain;
};

/// Checks the signature in the file at `path` (full path, UTF-8), which may be an image or a catalog; `encoded` is the
/// signature as the file contains it. If a certificate in it could end the process, the result is CRYPT_E_ASN1_CORRUPT
/// and the platform is not called.
PlatformVerdict AskAboutFile(const std::string& path, Bytes encoded);

/// A file that a catalog lists.
struct CatalogMember {
  /// Full paths, UTF-8.
  std::string catalog;
  std::string file;
  /// The hash by which the catalog lists the file, as bytes.
  std::string hash;
  /// The platform's catalog administrator (HCATADMIN) for that kind of hash.
  void* administrator = nullptr;
};

/// Checks the signature of the catalog for its member.
PlatformVerdict AskAboutMember(const CatalogMember& member);

}  // namespace trust
