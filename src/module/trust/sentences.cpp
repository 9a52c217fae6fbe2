#include "trust/sentences.h"

#include <windows.h>

#include <cstdio>
#include <string_view>

#include "platform/encoding.h"

namespace trust {
namespace {

struct Sentence {
  HRESULT code;
  std::string_view text;
};

constexpr Sentence Sentences[] = {
    {TRUST_E_NOSIGNATURE, "The file has no signature."},
    {TRUST_E_SUBJECT_FORM_UNKNOWN, "Files of this type cannot have a signature."},
    {TRUST_E_BAD_DIGEST, "The file does not match its signature."},
    {TRUST_E_CERT_SIGNATURE, "The signature does not match the certificate."},
    {TRUST_E_NO_SIGNER_CERT, "The certificate of the signer is missing."},
    {TRUST_E_COUNTER_SIGNER, "The signature of the time stamp is not valid."},
    {TRUST_E_TIME_STAMP, "The time stamp is not valid."},
    {TRUST_E_EXPLICIT_DISTRUST, "The certificate is distrusted on this machine."},
    {TRUST_E_SUBJECT_NOT_TRUSTED, "The signer is not trusted."},
    {TRUST_E_SYSTEM_ERROR, "The system failed while it checked the signature."},
    {TRUST_E_FAIL, "The system did not report the chain of certificates."},
    {CERT_E_EXPIRED, "The certificate has expired, or is not valid yet."},
    {CERT_E_UNTRUSTEDROOT, "The chain of certificates ends at a root that this machine does not trust."},
    {CERT_E_CHAINING, "The chain of certificates does not end at a root."},
    {CERT_E_REVOKED, "The certificate was revoked."},
    {CERT_E_WRONG_USAGE, "The certificate is not meant for signing programs."},
    {CRYPT_E_NO_REVOCATION_CHECK, "Revocation could not be checked."},
    {CRYPT_E_REVOCATION_OFFLINE, "Revocation could not be checked offline."},
    {CRYPT_E_UNKNOWN_ALGO, "The signature uses an unknown hash algorithm."},
    {CRYPT_E_ASN1_BADTAG, "The signature cannot be read."},
    {CRYPT_E_ASN1_EOD, "The signature is cut short."},
    {CRYPT_E_ASN1_CORRUPT, "The signature cannot be read."},
};

std::string OwnSentence(std::uint32_t code) {
  for (const Sentence& sentence : Sentences) {
    if (static_cast<std::uint32_t>(sentence.code) == code) return std::string(sentence.text);
  }
  char text[32];
  std::snprintf(text, sizeof(text), "Windows error 0x%08X.", static_cast<unsigned>(code));
  return text;
}

}  // namespace

std::string SentenceFor(std::uint32_t code) {
  const std::string sentence = Orvane::ErrorText(code);
  // If the system has no message, the number takes its place.
  return sentence == "error " + std::to_string(code) ? OwnSentence(code) : sentence;
}

}  // namespace trust
