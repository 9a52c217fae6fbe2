// Signatures of real images, against what osslsigncode says of them and openssl of their certificates.
#include "trust/signature.h"

#include <gmock/gmock.h>

#include <future>

#include "samples.h"

using test::CertificateOf;
using test::SamplePath;
using test::TrustingMachine;
using testing::ElementsAre;
using testing::IsEmpty;
using trust::Catalogs;
using trust::Certificate;
using trust::Hashes;
using trust::HashImage;
using trust::Signature;
using trust::SignatureKind;
using trust::SignatureState;
using trust::SignerFacts;
using trust::Verify;

namespace trust {

bool operator==(const Certificate& a, const Certificate& b) {
  return a.subject == b.subject && a.issuer == b.issuer && a.thumbprint == b.thumbprint && a.tbsHash == b.tbsHash;
}

void PrintTo(const Certificate& certificate, std::ostream* out) {
  *out << certificate.subject << " by " << certificate.issuer << ", " << certificate.thumbprint << ", "
       << certificate.tbsHash;
}

}  // namespace trust

namespace {

Signature VerifySample(const std::string& file, const Catalogs& catalogs = Catalogs()) {
  return Verify(SamplePath(file), HashImage(SamplePath(file)), catalogs);
}

std::string StateOf(const Signature& signature) { return std::string(NameOf(signature.state)); }

/// State and code, such as "invalid 80096010".
std::string Verdict(const Signature& signature) {
  char code[16];
  std::snprintf(code, sizeof(code), " %08X", static_cast<unsigned>(signature.code));
  return StateOf(signature) + code;
}

const Certificate Root{"Sample Test Root", "Sample Test Root", CertificateOf("root").thumbprint,
                       CertificateOf("root").tbsHash};
const Certificate Issuing{"Sample Issuing Authority", "Sample Test Root", CertificateOf("issuing").thumbprint,
                          CertificateOf("issuing").tbsHash};

/// A certificate of the issuing authority.
Certificate Issued(const std::string& subject, const std::string& name) {
  return {subject, "Sample Issuing Authority", CertificateOf(name).thumbprint, CertificateOf(name).tbsHash};
}

using SampleSignatures = TrustingMachine;

TEST_F(SampleSignatures, HaveTheStateThatOsslsigncodeSees) {
  const Catalogs catalogs;
  ASSERT_GT(test::Samples().size(), 30u);
  for (const test::Sample& sample : test::Samples()) {
    // Wine does not judge time stamps: to it, what has expired since is expired.
    if (sample.file == "expired-stamped.sys" && test::IsWine()) continue;
    const Signature signature = VerifySample(sample.file, catalogs);
    EXPECT_EQ(StateOf(signature), sample.state) << sample.file;
    EXPECT_EQ(signature.catalog, sample.catalog) << sample.file;
    EXPECT_EQ(signature.facts.signedAt, sample.signedAt) << sample.file;
    if (sample.signer.empty()) continue;
    EXPECT_EQ(signature.Signer(), sample.signer) << sample.file;
    EXPECT_EQ(signature.Issuer(), sample.issuer) << sample.file;
  }
}

TEST_F(SampleSignatures, NameTheCertificatesUpToTheRoot) {
  const Signature signature = VerifySample("signed.sys");
  EXPECT_EQ(Verdict(signature), "valid 00000000");
  EXPECT_EQ(signature.sentence, "");
  EXPECT_EQ(signature.kind, SignatureKind::Embedded);
  EXPECT_EQ(signature.catalog, "");
  EXPECT_EQ(signature.facts.digestAlgorithm, "sha256");
  EXPECT_THAT(signature.facts.chain, ElementsAre(Issued("Sample Platform Components", "vendor"), Issuing, Root));
  EXPECT_EQ(signature.Thumbprint(), CertificateOf("vendor").thumbprint);
  EXPECT_EQ(signature.facts.programName, "Sample driver");
  EXPECT_EQ(signature.facts.signedAt, "");
  EXPECT_TRUE(signature.facts.ev);
  EXPECT_FALSE(signature.facts.whql);
  EXPECT_FALSE(signature.facts.attestation);
  EXPECT_THAT(signature.nested, IsEmpty());
}

TEST_F(SampleSignatures, OfHardwareQualityAreHinted) {
  const SignerFacts facts = VerifySample("whql.sys").facts;
  EXPECT_THAT(facts.chain, ElementsAre(Issued("Sample Hardware Compatibility Publisher", "whql"), Issuing, Root));
  EXPECT_TRUE(facts.whql);
  EXPECT_TRUE(facts.attestation);
  EXPECT_FALSE(facts.ev);
  EXPECT_EQ(facts.programName, "Hafen Docking");
  EXPECT_EQ(facts.signedAt, "2023-11-14T22:13:20Z");
}

TEST_F(SampleSignatures, WithinOneAnotherAreFacts) {
  const Signature signature = VerifySample("dual.sys");
  EXPECT_EQ(signature.facts.digestAlgorithm, "sha1");
  EXPECT_EQ(signature.Signer(), "Sample Platform Components");
  ASSERT_EQ(signature.nested.size(), 1u);
  const SignerFacts& nested = signature.nested.front();
  EXPECT_EQ(nested.digestAlgorithm, "sha256");
  EXPECT_THAT(nested.chain, ElementsAre(Issued("Sample Hardware Compatibility Publisher", "whql"), Issuing, Root));
  EXPECT_EQ(nested.signedAt, "2023-11-14T22:13:20Z");
  EXPECT_TRUE(nested.whql);
}

TEST_F(SampleSignatures, AreInvalidWhereTheChainOrADigestDoesNotHold) {
  // The platform's own answer to some of them is 0 under Wine: the chain and the digests decide.
  const Catalogs catalogs;
  const auto verdict = [&](const char* file) { return Verdict(VerifySample(file, catalogs)); };
  EXPECT_EQ(verdict("untrusted.sys"), "invalid 800B0109");
  EXPECT_EQ(verdict("untrusted-sha1.sys"), "invalid 800B0109");
  EXPECT_EQ(verdict("expired.sys"), "invalid 800B0101");
  EXPECT_EQ(verdict("expired-sha1.sys"), "invalid 800B0101");
  EXPECT_EQ(verdict("tampered.sys"), "invalid 80096010");
  EXPECT_EQ(verdict("forged.sys"), "invalid 80096010");
  EXPECT_EQ(verdict("by-altered-catalog.sys"), "invalid 80096010");
  EXPECT_EQ(verdict("by-foreign-catalog.sys"), "invalid 800B0109");
}

TEST_F(SampleSignatures, AreFactsAlsoWhereTheyDoNotHold) {
  for (const char* const file : {"tampered.sys", "forged.sys", "appended.sys", "signature-flipped.sys"}) {
    const Signature signature = VerifySample(file);
    EXPECT_EQ(StateOf(signature), "invalid") << file;
    EXPECT_THAT(signature.facts.chain, ElementsAre(Issued("Sample Platform Components", "vendor"), Issuing, Root))
        << file;
    EXPECT_NE(signature.sentence, "") << file;
  }
}

TEST_F(SampleSignatures, AreTheSameFromSeveralThreads) {
  const Catalogs catalogs;
  const auto verifyAll = [&] {
    std::string verdicts;
    for (const test::Sample& sample : test::Samples()) {
      const Signature signature = VerifySample(sample.file, catalogs);
      verdicts += sample.file + " " + Verdict(signature) + " " + signature.catalog + " " + signature.Signer() + "\n";
    }
    return verdicts;
  };
  std::vector<std::future<std::string>> threads;
  for (int i = 0; i < 4; ++i) threads.push_back(std::async(std::launch::async, verifyAll));
  const std::string alone = verifyAll();
  for (auto& thread : threads) EXPECT_EQ(thread.get(), alone);
}

TEST_F(SampleSignatures, OfCatalogsComeAndGoWithTheCatalog) {
  EXPECT_EQ(Verdict(VerifySample("by-catalog-2.sys")), "valid 00000000");
  TrustingMachine::TearDown();
  EXPECT_EQ(Verdict(VerifySample("by-catalog-2.sys")), "unsigned 800B0100");
  TrustingMachine::SetUp();
  EXPECT_EQ(Verdict(VerifySample("by-catalog-2.sys")), "valid 00000000");
}

TEST(Signatures, OfAFileThatCannotBeReadAreUnknown) {
  const std::string missing = SamplePath("no-such.sys");
  const Hashes hashes = HashImage(missing);
  const Signature signature = Verify(missing, hashes, Catalogs());
  EXPECT_EQ(Verdict(signature), "unknown 00000002");
  EXPECT_EQ(signature.sentence, hashes.error);
  EXPECT_EQ(signature.kind, SignatureKind::None);
}

TEST(Signatures, AreNamedAsInDocuments) {
  EXPECT_EQ(NameOf(SignatureState::Unknown), "unknown");
  EXPECT_EQ(NameOf(SignatureState::Unsigned), "unsigned");
  EXPECT_EQ(NameOf(SignatureState::Invalid), "invalid");
  EXPECT_EQ(NameOf(SignatureState::Valid), "valid");
  EXPECT_EQ(NameOf(SignatureKind::None), "");
  EXPECT_EQ(NameOf(SignatureKind::Embedded), "embedded");
  EXPECT_EQ(NameOf(SignatureKind::Catalog), "catalog");
}

}  // namespace
