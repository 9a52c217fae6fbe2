// What each code of the platform means together with what was found otherwise.
#include "trust/signaturestate.h"

#include <gtest/gtest.h>

#include <set>

using trust::DigestCheck;
using trust::Evidence;
using trust::Judge;
using trust::Judgement;
using trust::SignatureState;

namespace trust {

bool operator==(const Judgement& a, const Judgement& b) { return a.state == b.state && a.code == b.code; }
void PrintTo(const Judgement& judgement, std::ostream* out) {
  *out << NameOf(judgement.state) << " " << std::hex << judgement.code;
}

}  // namespace trust

namespace {

Evidence Good() {
  Evidence evidence;
  evidence.hasChain = true;
  evidence.image = DigestCheck::Matches;
  evidence.content = DigestCheck::Matches;
  evidence.hasSignature = true;
  return evidence;
}

Evidence WithCode(std::uint32_t code, bool hasSignature) {
  Evidence evidence = Good();
  evidence.code = code;
  evidence.hasSignature = hasSignature;
  return evidence;
}

/// The codes for a file without signature, and for what is not a file that could have one.
const std::set<std::uint32_t> NoSignature = {0x800B0100, 0x800B0003};

/// The file cannot be read, the system fails, or revocation is offline. The numbers are those of winerror.h.
const std::set<std::uint32_t> CouldNotLook = {
    // No such file, path; too many open; access denied; no memory; not ready; damaged; failing; shared; locked.
    2, 3, 4, 5, 8, 14, 21, 23, 31, 32, 33,
    // The network's; not implemented; wrong kind of file; no resources; changed; hardware.
    53, 67, 120, 222, 1450, 1006, 1117,
    // E_NOTIMPL, CRYPT_E_FILE_ERROR, CRYPT_E_NO_REVOCATION_CHECK, CRYPT_E_REVOCATION_OFFLINE.
    0x80004001, 0x80092003, 0x80092012, 0x80092013,
    // TRUST_E_SYSTEM_ERROR, TRUST_E_PROVIDER_UNKNOWN, TRUST_E_ACTION_UNKNOWN, TRUST_E_FAIL, CERT_E_REVOCATION_FAILURE.
    0x80096001, 0x800B0001, 0x800B0002, 0x800B010B, 0x800B010E};

SignatureState Expected(std::uint32_t code, bool hasSignature) {
  if (NoSignature.count(code) > 0) return hasSignature ? SignatureState::Invalid : SignatureState::Unsigned;
  const std::uint32_t windowsError = (code >> 16) == 0x8007 ? code & 0xFFFF : code;
  return CouldNotLook.count(windowsError) > 0 ? SignatureState::Unknown : SignatureState::Invalid;
}

TEST(SignatureStates, OfEveryCodeAreThoseOfTheTable) {
  // Windows errors, plain and as HRESULT; those of COM, of cryptography, of certificates and trust.
  constexpr std::pair<std::uint32_t, std::uint32_t> ranges[] = {
      {0x00000001, 0x00004000}, {0x80004000, 0x80004100}, {0x80070001, 0x80074000},
      {0x80090000, 0x80090400}, {0x80091000, 0x80091100}, {0x80092000, 0x80092100},
      {0x80093000, 0x80093200}, {0x80096000, 0x80096100}, {0x800B0000, 0x800B0200}};
  for (const auto& [begin, end] : ranges) {
    for (std::uint32_t code = begin; code < end; ++code) {
      for (const bool hasSignature : {false, true}) {
        const Judgement expected{Expected(code, hasSignature), code};
        ASSERT_EQ(Judge(WithCode(code, hasSignature)), expected) << std::hex << code;
      }
    }
  }
}

TEST(SignatureStates, AreValidOnlyWhereEverythingHolds) {
  EXPECT_EQ(Judge(Good()), (Judgement{SignatureState::Valid, 0}));
  std::size_t valid = 0;
  for (const std::uint32_t code : {0u, 1u, 0x800B0100u, 0x800B0109u}) {
    for (const bool hasChain : {false, true}) {
      for (std::uint32_t bit = 0; bit <= 32; ++bit) {
        for (const DigestCheck image : {DigestCheck::NotKnown, DigestCheck::Differs, DigestCheck::Matches}) {
          for (const DigestCheck content : {DigestCheck::NotKnown, DigestCheck::Differs, DigestCheck::Matches}) {
            Evidence evidence = Good();
            evidence.code = code;
            evidence.hasChain = hasChain;
            evidence.chainErrors = bit == 32 ? 0 : std::uint32_t{1} << bit;
            evidence.image = image;
            evidence.content = content;
            if (Judge(evidence).state == SignatureState::Valid) ++valid;
          }
        }
      }
    }
  }
  EXPECT_EQ(valid, 1u);
}

TEST(SignatureStates, OfAYesFromThePlatformRestOnWhatIsWrong) {
  Evidence evidence = Good();
  evidence.hasChain = false;
  EXPECT_EQ(Judge(evidence), (Judgement{SignatureState::Unknown, 0x800B010B}));
  evidence = Good();
  evidence.image = DigestCheck::Differs;
  EXPECT_EQ(Judge(evidence), (Judgement{SignatureState::Invalid, 0x80096010}));
  evidence = Good();
  evidence.content = DigestCheck::Differs;
  EXPECT_EQ(Judge(evidence), (Judgement{SignatureState::Invalid, 0x80096010}));
  evidence = Good();
  evidence.content = DigestCheck::NotKnown;
  EXPECT_EQ(Judge(evidence), (Judgement{SignatureState::Unknown, 0x80091002}));
}

TEST(SignatureStates, OfAChainInErrorHaveTheCodeOfTheGravestError) {
  const auto ofChain = [](std::uint32_t errors) {
    Evidence evidence = Good();
    evidence.chainErrors = errors;
    return Judge(evidence);
  };
  const auto invalid = [](std::uint32_t code) { return Judgement{SignatureState::Invalid, code}; };
  const auto unknown = [](std::uint32_t code) { return Judgement{SignatureState::Unknown, code}; };
  EXPECT_EQ(ofChain(0x1), invalid(0x800B0101));
  EXPECT_EQ(ofChain(0x4), invalid(0x800B010C));
  EXPECT_EQ(ofChain(0x8), invalid(0x80096004));
  EXPECT_EQ(ofChain(0x10), invalid(0x800B0110));
  EXPECT_EQ(ofChain(0x20), invalid(0x800B0109));
  EXPECT_EQ(ofChain(0x21), invalid(0x800B0109));
  EXPECT_EQ(ofChain(0x80), invalid(0x800B010A));
  EXPECT_EQ(ofChain(0x10000), invalid(0x800B010A));
  EXPECT_EQ(ofChain(0x4000000), invalid(0x800B0111));
  EXPECT_EQ(ofChain(0x4000021), invalid(0x800B0111));
  // An error without a code of its own.
  EXPECT_EQ(ofChain(0x100), invalid(0x800B010A));
  EXPECT_EQ(ofChain(0x40), unknown(0x80092012));
  EXPECT_EQ(ofChain(0x1000000), unknown(0x80092013));
  EXPECT_EQ(ofChain(0x1000040), unknown(0x80092013));
  // Revocation that is not known hides nothing else.
  EXPECT_EQ(ofChain(0x1000060), invalid(0x800B0109));
}

}  // namespace
