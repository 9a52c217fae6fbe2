/// @file
/// What the platform's answer and our own reading say together: the state of a signature. Pure.
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

/// What a state is made of.
struct Evidence {
  /// WinVerifyTrust's answer.
  std::uint32_t code = 0;
  /// Whether the platform showed the chain of certificates, and which errors it has (CERT_TRUST_...).
  bool hasChain = false;
  std::uint32_t chainErrors = 0;
  /// The digest of the image against the signed one; for a catalog, whether it lists the image.
  DigestCheck image = DigestCheck::NotKnown;
  /// The digest of what is signed against the one that the signer signed.
  DigestCheck content = DigestCheck::NotKnown;
  /// Whether there is something of a signature: a certificate table that the image names, or a catalog that lists it.
  bool hasSignature = false;
};

struct Judgement {
  SignatureState state = SignatureState::Unknown;
  /// What the state rests on; 0 for `Valid`.
  std::uint32_t code = 0;
};

Judgement Judge(const Evidence& evidence);

}  // namespace trust
