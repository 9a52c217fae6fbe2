#include "trust/signaturestate.h"

// Before the other headers.
#include <windows.h>

#include <wincrypt.h>

#include <algorithm>
#include <iterator>

namespace trust {
namespace {

constexpr std::uint32_t Code(HRESULT code) { return static_cast<std::uint32_t>(code); }

/// The platform finds no signature, or does not know how a file of this kind could be signed.
constexpr std::uint32_t NoSignature[] = {Code(TRUST_E_NOSIGNATURE), Code(TRUST_E_SUBJECT_FORM_UNKNOWN)};

/// The platform could not check it. Windows errors may also be reported as HRESULTs.
constexpr std::uint32_t CouldNotLook[] = {
    ERROR_FILE_NOT_FOUND,
    ERROR_PATH_NOT_FOUND,
    ERROR_TOO_MANY_OPEN_FILES,
    ERROR_ACCESS_DENIED,
    ERROR_NOT_ENOUGH_MEMORY,
    ERROR_OUTOFMEMORY,
    ERROR_NOT_READY,
    ERROR_CRC,
    ERROR_GEN_FAILURE,
    ERROR_SHARING_VIOLATION,
    ERROR_LOCK_VIOLATION,
    ERROR_BAD_NETPATH,
    ERROR_BAD_NET_NAME,
    ERROR_CALL_NOT_IMPLEMENTED,
    ERROR_BAD_FILE_TYPE,
    ERROR_NO_SYSTEM_RESOURCES,
    ERROR_FILE_INVALID,
    ERROR_IO_DEVICE,
    Code(E_NOTIMPL),
    Code(CRYPT_E_FILE_ERROR),
    Code(CRYPT_E_NO_REVOCATION_CHECK),
    Code(CRYPT_E_REVOCATION_OFFLINE),
    Code(CERT_E_REVOCATION_FAILURE),
    Code(TRUST_E_PROVIDER_UNKNOWN),
    Code(TRUST_E_ACTION_UNKNOWN),
    Code(TRUST_E_SYSTEM_ERROR),
    Code(TRUST_E_FAIL),
};

/// The platform's code for an error in a chain.
struct ChainError {
  std::uint32_t error;
  std::uint32_t code;
};

/// Graver errors come first. Unknown revocation comes last, so that it hides nothing else.
constexpr ChainError ChainErrors[] = {
    {CERT_TRUST_IS_EXPLICIT_DISTRUST, Code(TRUST_E_EXPLICIT_DISTRUST)},
    {CERT_TRUST_IS_REVOKED, Code(CERT_E_REVOKED)},
    {CERT_TRUST_IS_NOT_SIGNATURE_VALID, Code(TRUST_E_CERT_SIGNATURE)},
    {CERT_TRUST_IS_UNTRUSTED_ROOT, Code(CERT_E_UNTRUSTEDROOT)},
    {CERT_TRUST_IS_PARTIAL_CHAIN | CERT_TRUST_IS_CYCLIC, Code(CERT_E_CHAINING)},
    {CERT_TRUST_IS_NOT_TIME_VALID, Code(CERT_E_EXPIRED)},
    {CERT_TRUST_IS_NOT_VALID_FOR_USAGE, Code(CERT_E_WRONG_USAGE)},
};
constexpr ChainError RevocationErrors[] = {
    {CERT_TRUST_IS_OFFLINE_REVOCATION, Code(CRYPT_E_REVOCATION_OFFLINE)},
    {CERT_TRUST_REVOCATION_STATUS_UNKNOWN, Code(CRYPT_E_NO_REVOCATION_CHECK)},
};
constexpr std::uint32_t AnyRevocationError = CERT_TRUST_IS_OFFLINE_REVOCATION | CERT_TRUST_REVOCATION_STATUS_UNKNOWN;

template <std::size_t Count>
bool Holds(const std::uint32_t (&codes)[Count], std::uint32_t code) {
  return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

template <std::size_t Count>
std::uint32_t Find(const ChainError (&errors)[Count], std::uint32_t chainErrors, std::uint32_t otherwise) {
  for (const ChainError& error : errors) {
    if ((chainErrors & error.error) != 0) return error.code;
  }
  return otherwise;
}

/// The code for a chain that has an error.
std::uint32_t CodeOfChain(std::uint32_t errors) {
  if ((errors & ~AnyRevocationError) == 0) return Find(RevocationErrors, errors, Code(CERT_E_CHAINING));
  return Find(ChainErrors, errors, Code(CERT_E_CHAINING));
}

/// The Windows error that an HRESULT wraps, or the code as it is.
std::uint32_t Unwrapped(std::uint32_t code) {
  constexpr std::uint32_t win32 = 0x8007'0000;
  return (code & 0xFFFF'0000) == win32 ? code & 0xFFFF : code;
}

SignatureState StateOfCode(std::uint32_t code, bool hasSignature) {
  if (Holds(NoSignature, code)) return hasSignature ? SignatureState::Invalid : SignatureState::Unsigned;
  if (Holds(CouldNotLook, code) || Holds(CouldNotLook, Unwrapped(code))) return SignatureState::Unknown;
  return SignatureState::Invalid;
}

}  // namespace

Judgement Judge(const Evidence& evidence) {
  if (evidence.code != 0) return {StateOfCode(evidence.code, evidence.hasSignature), evidence.code};
  // The platform accepted the signature, which is not enough on every platform.
  if (!evidence.hasChain) return {SignatureState::Unknown, Code(TRUST_E_FAIL)};
  if (evidence.chainErrors != 0) {
    const std::uint32_t code = CodeOfChain(evidence.chainErrors);
    return {StateOfCode(code, evidence.hasSignature), code};
  }
  if (evidence.image == DigestCheck::Differs || evidence.content == DigestCheck::Differs) {
    return {SignatureState::Invalid, Code(TRUST_E_BAD_DIGEST)};
  }
  if (evidence.image == DigestCheck::NotKnown || evidence.content == DigestCheck::NotKnown) {
    return {SignatureState::Unknown, Code(CRYPT_E_UNKNOWN_ALGO)};
  }
  return {SignatureState::Valid, 0};
}

}  // namespace trust
