/// @file
/// Digests, computed by the platform.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "trust/algorithms.h"
#include "trust/bytes.h"

namespace trust {

/// A digest that is computed piece by piece.
class Digest {
 public:
  explicit Digest(DigestAlgorithm algorithm);
  Digest(Digest&&) noexcept;
  Digest& operator=(Digest&&) noexcept;
  ~Digest();

  void Add(Bytes bytes);
  /// The digest as bytes; empty if the platform failed. Call it only once.
  std::string Finish();

 private:
  struct Hash;
  std::unique_ptr<Hash> m_hash;
};

/// The digest of `bytes`, as bytes; empty if the platform failed.
std::string DigestOf(DigestAlgorithm algorithm, Bytes bytes);

}  // namespace trust
