#include "trust/digest.h"

// Before bcrypt.h.
#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <limits>

#include "platform/handles.h"

namespace trust {
namespace {

const wchar_t* PlatformName(DigestAlgorithm algorithm) {
  switch (algorithm) {
    case DigestAlgorithm::Md5:
      return BCRYPT_MD5_ALGORITHM;
    case DigestAlgorithm::Sha1:
      return BCRYPT_SHA1_ALGORITHM;
    case DigestAlgorithm::Sha256:
      return BCRYPT_SHA256_ALGORITHM;
    case DigestAlgorithm::Sha384:
      return BCRYPT_SHA384_ALGORITHM;
    case DigestAlgorithm::Sha512:
      break;
  }
  return BCRYPT_SHA512_ALGORITHM;
}

void CloseProvider(BCRYPT_ALG_HANDLE provider) { BCryptCloseAlgorithmProvider(provider, 0); }
void DestroyHash(BCRYPT_HASH_HANDLE hash) { BCryptDestroyHash(hash); }
using Provider = Orvane::UniqueHandle<BCRYPT_ALG_HANDLE, &CloseProvider>;
using HashHandle = Orvane::UniqueHandle<BCRYPT_HASH_HANDLE, &DestroyHash>;

}  // namespace

struct Digest::Hash {
  // Closed in the reverse order: a hash needs its provider.
  Provider provider;
  HashHandle hash;
  std::size_t size = 0;
  bool failed = false;
};

Digest::Digest(DigestAlgorithm algorithm) : m_hash(std::make_unique<Hash>()) {
  m_hash->size = DigestSize(algorithm);
  BCRYPT_ALG_HANDLE provider = nullptr;
  m_hash->failed = BCryptOpenAlgorithmProvider(&provider, PlatformName(algorithm), nullptr, 0) < 0;
  if (m_hash->failed) return;
  m_hash->provider.reset(provider);
  BCRYPT_HASH_HANDLE hash = nullptr;
  m_hash->failed = BCryptCreateHash(provider, &hash, nullptr, 0, nullptr, 0, 0) < 0;
  if (!m_hash->failed) m_hash->hash.reset(hash);
}

Digest::Digest(Digest&&) noexcept = default;
Digest& Digest::operator=(Digest&&) noexcept = default;
Digest::~Digest() = default;

void Digest::Add(Bytes bytes) {
  while (!bytes.empty() && !m_hash->failed) {
    constexpr std::size_t most = std::numeric_limits<ULONG>::max();
    const std::size_t size = std::min(bytes.size(), most);
    // The platform only reads them, although its parameter is not const.
    auto* const begin = reinterpret_cast<PUCHAR>(const_cast<char*>(bytes.data()));
    m_hash->failed = BCryptHashData(m_hash->hash.get(), begin, static_cast<ULONG>(size), 0) < 0;
    bytes.remove_prefix(size);
  }
}

std::string Digest::Finish() {
  std::string digest(m_hash->size, '\0');
  auto* const begin = reinterpret_cast<PUCHAR>(digest.data());
  if (m_hash->failed || BCryptFinishHash(m_hash->hash.get(), begin, static_cast<ULONG>(digest.size()), 0) < 0)
    return {};
  return digest;
}

std::string DigestOf(DigestAlgorithm algorithm, Bytes bytes) {
  Digest digest(algorithm);
  digest.Add(bytes);
  return digest.Finish();
}

}  // namespace trust
