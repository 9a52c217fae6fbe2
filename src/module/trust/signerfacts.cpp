#include "trust/signerfacts.h"

#include <algorithm>

#include "trust/digest.h"

namespace trust {
namespace {

bool Contains(const std::vector<std::string>& identifiers, std::string_view oid) {
  return std::find(identifiers.begin(), identifiers.end(), oid) != identifiers.end();
}

/// The digest of `bytes` by the algorithm with that identifier; empty for an unknown algorithm.
std::string DigestBy(std::string_view oid, Bytes bytes) {
  const auto algorithm = DigestAlgorithmOf(oid);
  return algorithm ? DigestOf(*algorithm, bytes) : std::string();
}

Certificate Describe(const X509& certificate) {
  Certificate described;
  described.subject = DisplayName(certificate.subject);
  described.issuer = DisplayName(certificate.issuer);
  described.thumbprint = Hex(DigestOf(DigestAlgorithm::Sha1, certificate.whole));
  if (const auto algorithm = DigestAlgorithmOfSignature(certificate.signatureAlgorithm)) {
    described.tbsHash = Hex(DigestOf(*algorithm, certificate.toBeSigned));
  }
  return described;
}

/// Each certificate is followed by that of its issuer. Certificates may name each other in a circle.
std::vector<X509> ChainWithin(const SignedData& data, const X509& signer) {
  constexpr std::size_t longest = 16;
  std::vector<X509> chain{signer};
  while (chain.size() < longest && chain.back().issuer != chain.back().subject) {
    const Bytes issuer = chain.back().issuer;
    const auto found = std::find_if(data.certificates.begin(), data.certificates.end(),
                                    [&](const X509& certificate) { return certificate.subject == issuer; });
    if (found == data.certificates.end()) break;
    chain.push_back(*found);
  }
  return chain;
}

std::vector<X509> ChainOf(const SignedData& data, const std::vector<std::string>& platformChain) {
  std::vector<X509> chain;
  for (const std::string& encoded : platformChain) {
    if (auto certificate = ParseX509(encoded)) chain.push_back(std::move(*certificate));
  }
  const X509* const signer = data.SignerCertificate();
  if (signer == nullptr) return {};
  const bool isOfSigner = !chain.empty() && chain.front().whole == signer->whole;
  return isOfSigner ? chain : ChainWithin(data, *signer);
}

/// The time of the first stamp that was made for this signature: one copied from another file says nothing.
std::string StampedTime(const SignerInfo& signer) {
  for (const TimeStamp& stamp : signer.timeStamps) {
    const std::string imprint = DigestBy(stamp.digestAlgorithm, signer.signature);
    if (!imprint.empty() && stamp.imprint == imprint && !stamp.time.empty()) return stamp.time;
  }
  return {};
}

}  // namespace

DigestCheck CheckContent(const SignedData& data) {
  if (data.signer.contentType != data.contentType) return DigestCheck::Differs;
  const std::string digest = DigestBy(data.signer.digestAlgorithm, data.content);
  if (digest.empty()) return DigestCheck::NotKnown;
  return data.signer.messageDigest == digest ? DigestCheck::Matches : DigestCheck::Differs;
}

SignerFacts FactsOf(const SignedData& data, const std::vector<std::string>& platformChain) {
  constexpr std::string_view whqlUsage = "1.3.6.1.4.1.311.10.3.5";
  constexpr std::string_view attestationUsage = "1.3.6.1.4.1.311.10.3.5.1";
  constexpr std::string_view evPolicy = "2.23.140.1.3";
  SignerFacts facts;
  if (const auto algorithm = DigestAlgorithmOf(data.signer.digestAlgorithm)) facts.digestAlgorithm = NameOf(*algorithm);
  for (const X509& certificate : ChainOf(data, platformChain)) facts.chain.push_back(Describe(certificate));
  facts.signedAt = StampedTime(data.signer);
  facts.programName = data.signer.programName;
  if (const X509* const signer = data.SignerCertificate()) {
    facts.whql = Contains(signer->usages, whqlUsage);
    facts.attestation = Contains(signer->usages, attestationUsage);
    facts.ev = Contains(signer->policies, evPolicy);
  }
  return facts;
}

std::vector<SignerFacts> NestedFactsOf(const SignedData& data) {
  constexpr std::size_t most = 16;
  std::vector<SignerFacts> nested;
  for (const Bytes encoded : data.signer.nested) {
    if (nested.size() == most) break;
    if (const auto parsed = ParseSignedData(encoded)) nested.push_back(FactsOf(*parsed, {}));
  }
  return nested;
}

}  // namespace trust
