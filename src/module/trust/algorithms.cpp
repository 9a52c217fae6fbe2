#include "trust/algorithms.h"

namespace trust {
namespace {

struct Algorithm {
  DigestAlgorithm digest;
  std::string_view name;
  std::size_t size;
};
constexpr Algorithm Algorithms[] = {
    {DigestAlgorithm::Md5, "md5", 16},       {DigestAlgorithm::Sha1, "sha1", 20},
    {DigestAlgorithm::Sha256, "sha256", 32}, {DigestAlgorithm::Sha384, "sha384", 48},
    {DigestAlgorithm::Sha512, "sha512", 64},
};

struct Identifier {
  std::string_view oid;
  DigestAlgorithm digest;
};
constexpr Identifier Digests[] = {
    {"1.2.840.113549.2.5", DigestAlgorithm::Md5},        {"1.3.14.3.2.26", DigestAlgorithm::Sha1},
    {"2.16.840.1.101.3.4.2.1", DigestAlgorithm::Sha256}, {"2.16.840.1.101.3.4.2.2", DigestAlgorithm::Sha384},
    {"2.16.840.1.101.3.4.2.3", DigestAlgorithm::Sha512},
};
constexpr Identifier Signatures[] = {
    // With RSA.
    {"1.2.840.113549.1.1.4", DigestAlgorithm::Md5},
    {"1.2.840.113549.1.1.5", DigestAlgorithm::Sha1},
    {"1.3.14.3.2.29", DigestAlgorithm::Sha1},
    {"1.2.840.113549.1.1.11", DigestAlgorithm::Sha256},
    {"1.2.840.113549.1.1.12", DigestAlgorithm::Sha384},
    {"1.2.840.113549.1.1.13", DigestAlgorithm::Sha512},
    // With elliptic curves.
    {"1.2.840.10045.4.1", DigestAlgorithm::Sha1},
    {"1.2.840.10045.4.3.2", DigestAlgorithm::Sha256},
    {"1.2.840.10045.4.3.3", DigestAlgorithm::Sha384},
    {"1.2.840.10045.4.3.4", DigestAlgorithm::Sha512},
};

const Algorithm& RowOf(DigestAlgorithm digest) {
  for (const Algorithm& algorithm : Algorithms) {
    if (algorithm.digest == digest) return algorithm;
  }
  return Algorithms[0];
}

template <std::size_t Count>
std::optional<DigestAlgorithm> Find(const Identifier (&identifiers)[Count], std::string_view oid) {
  for (const Identifier& identifier : identifiers) {
    if (identifier.oid == oid) return identifier.digest;
  }
  return std::nullopt;
}

}  // namespace

std::size_t DigestSize(DigestAlgorithm algorithm) { return RowOf(algorithm).size; }
std::string_view NameOf(DigestAlgorithm algorithm) { return RowOf(algorithm).name; }
std::optional<DigestAlgorithm> DigestAlgorithmOf(std::string_view oid) { return Find(Digests, oid); }
std::optional<DigestAlgorithm> DigestAlgorithmOfSignature(std::string_view oid) { return Find(Signatures, oid); }

}  // namespace trust
