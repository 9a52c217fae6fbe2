#include "trust/signature.h"

#include "trust/file.h"
#include "trust/imagedigest.h"
#include "trust/imagelayout.h"
#include "trust/platformverdict.h"
#include "trust/report.h"
#include "trust/signerfacts.h"

namespace trust {
namespace {

/// What the image itself contains of a signature.
struct EmbeddedSignature {
  bool isNamed = false;
  std::string table;
};

EmbeddedSignature ReadEmbedded(const std::string& path) {
  EmbeddedSignature embedded;
  File file(path);
  const auto read = [&](std::uint64_t offset, void* bytes, std::size_t size) {
    return file.ReadAt(offset, bytes, size);
  };
  const auto layout = ReadImageLayout(file.Size(), read);
  if (!layout) return embedded;
  embedded.isNamed = layout->namesCertificates;
  const FileRange table = layout->Certificates();
  // Real ones have a few tens of thousands of bytes.
  constexpr std::uint64_t most = 1 << 24;
  if (table.end - table.begin > most) return embedded;
  embedded.table.resize(static_cast<std::size_t>(table.end - table.begin));
  if (!read(table.begin, embedded.table.data(), embedded.table.size())) embedded.table.clear();
  return embedded;
}

/// The hash of the image by `algorithm`, taken from those already computed where possible.
std::string ImageHash(const std::string& path, const Hashes& hashes, DigestAlgorithm algorithm) {
  std::string hash;
  if (algorithm == DigestAlgorithm::Sha256) hash = hashes.imageSha256;
  if (algorithm == DigestAlgorithm::Sha1) hash = hashes.imageSha1;
  if (algorithm == DigestAlgorithm::Md5) hash = hashes.imageMd5;
  return hash.empty() ? ImageDigest(path, algorithm) : hash;
}

DigestCheck CheckImage(const std::string& path, const Hashes& hashes, const SignedData& data) {
  if (data.contentType != IndirectDataType) return DigestCheck::Differs;
  const auto listed = ParseIndirectData(data.content);
  const auto algorithm = listed ? DigestAlgorithmOf(listed->algorithm) : std::nullopt;
  if (!algorithm) return DigestCheck::NotKnown;
  const std::string hash = ImageHash(path, hashes, *algorithm);
  if (hash.empty()) return DigestCheck::NotKnown;
  return Hex(listed->digest) == hash ? DigestCheck::Matches : DigestCheck::Differs;
}

Signature VerifyEmbedded(const std::string& path, const Hashes& hashes) {
  const EmbeddedSignature embedded = ReadEmbedded(path);
  const auto data = ParseSignedData(FirstSignature(embedded.table));
  const PlatformVerdict verdict = AskAboutFile(path, embedded.table);

  Evidence evidence = EvidenceOf(verdict);
  evidence.hasSignature = embedded.isNamed;
  if (data) {
    evidence.image = CheckImage(path, hashes, *data);
    evidence.content = CheckContent(*data);
  }
  Signature signature = Report(evidence, verdict, data);
  if (embedded.isNamed) signature.kind = SignatureKind::Embedded;
  return signature;
}

}  // namespace

std::string Signature::Signer() const { return facts.chain.empty() ? std::string() : facts.chain.front().subject; }
std::string Signature::Issuer() const { return facts.chain.empty() ? std::string() : facts.chain.front().issuer; }
std::string Signature::Thumbprint() const {
  return facts.chain.empty() ? std::string() : facts.chain.front().thumbprint;
}

Signature Verify(const std::string& path, const Hashes& hashes, const Catalogs& catalogs) {
  if (hashes.errorCode != 0) {
    Signature unknown;
    unknown.code = hashes.errorCode;
    unknown.sentence = hashes.error;
    return unknown;
  }
  Signature embedded = VerifyEmbedded(path, hashes);
  if (embedded.state == SignatureState::Valid || embedded.state == SignatureState::Unknown) return embedded;
  Signature byCatalog = catalogs.Verify(path, hashes);
  const bool isOnlySignature =
      embedded.state == SignatureState::Unsigned && byCatalog.state != SignatureState::Unsigned;
  return byCatalog.state == SignatureState::Valid || isOnlySignature ? byCatalog : embedded;
}

}  // namespace trust
