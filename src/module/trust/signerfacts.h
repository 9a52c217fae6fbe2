/// @file
/// The facts about the signer in a signature, and whether the content is what was signed.
#pragma once

#include <string>
#include <vector>

#include "trust/signature.h"
#include "trust/signaturestate.h"
#include "trust/signeddata.h"

namespace trust {

/// Compares the digest of the content with the digest that the signer signed.
DigestCheck CheckContent(const SignedData& data);

/// `platformChain` holds encoded certificates, the signer's first. If it is not the chain of this signer, the chain is
/// built from the certificates in the signature.
SignerFacts FactsOf(const SignedData& data, const std::vector<std::string>& platformChain);

/// The same for the nested signatures, which the platform did not check.
std::vector<SignerFacts> NestedFactsOf(const SignedData& data);

}  // namespace trust
