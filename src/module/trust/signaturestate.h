/// @file
/// The state of a signature, from the platform's verdict and our own checks. Pure.
#pragma once

#include <cstdint>

#include "trust/signature.h"

namespace trust {

enum class DigestCheck {
  /// It could not be computed or read.
  NotKnown,
  Differs,
  Matches,
};

/// The facts that determine a state.
struct Evidence {
  /// The result of WinVerifyTrust.
  std::uint32_t code = 0;
  /// Whether the platform reported the chain of certificates, and the errors of the chain (CERT_TRUST_...).
  bool hasChain = false;
  std::uint32_t chainErrors = 0;
  /// Whether the digest of the image equals the signed digest; for a catalog, whether it lists the image.
  DigestCheck image = DigestCheck::NotKnown;
  /// Whether the digest of the signed content equals the digest that the signer signed.
  DigestCheck content = DigestCheck::NotKnown;
  /// Whether there is any trace of a signature: a certificate table that the image names, or a catalog that lists it.
  bool hasSignature = false;
};

struct Judgement {
  SignatureState state = SignatureState::Unknown;
  /// The reason for the state; 0 for `Valid`.
  std::uint32_t code = 0;
};

Judgement Judge(const Evidence& evidence);

}  // namespace trust
