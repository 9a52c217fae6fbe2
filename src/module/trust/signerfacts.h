/// @file
/// What a signature says of its signer, and whether its content is what was signed.
#pragma once

#include <string>
#include <vector>

#include "trust/signature.h"
#include "trust/signaturestate.h"
#include "trust/signeddata.h"

namespace trust {

/// The digest of the content against the one that the signer signed.
DigestCheck CheckContent(const SignedData& data);

/// `platformChain` holds encoded certificates, the signer's first. Where it is not of this signer, the chain is made of
/// the certificates that come with the signature.
SignerFacts FactsOf(const SignedData& data, const std::vector<std::string>& platformChain);

/// The same of the signatures within it, which the platform did not judge.
std::vector<SignerFacts> NestedFactsOf(const SignedData& data);

}  // namespace trust
