/// @file
/// The digest algorithms of signatures, and the object identifiers that name them. Uses no platform API.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace trust {

enum class DigestAlgorithm { Md5, Sha1, Sha256, Sha384, Sha512 };

/// The size of its digests in bytes.
std::size_t DigestSize(DigestAlgorithm algorithm);

/// "md5", "sha1", "sha256", "sha384", "sha512".
std::string_view NameOf(DigestAlgorithm algorithm);

/// The algorithm that the object identifier `oid` ("2.16.840.1.101.3.4.2.1") names.
std::optional<DigestAlgorithm> DigestAlgorithmOf(std::string_view oid);

/// The digest algorithm of the signature algorithm `oid`, such as SHA-256 with RSA.
std::optional<DigestAlgorithm> DigestAlgorithmOfSignature(std::string_view oid);

}  // namespace trust
