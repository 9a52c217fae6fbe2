#include "trust/catalog.h"

#include <windows.h>

#include <map>
#include <mutex>

#include "trust/catalogfile.h"
#include "trust/catalogstore.h"
#include "trust/imagedigest.h"
#include "trust/report.h"
#include "trust/sentences.h"

namespace trust {
namespace {

std::string FileName(const std::string& path) {
  const std::size_t folderEnd = path.find_last_of("\\/");
  return folderEnd == std::string::npos ? path : path.substr(folderEnd + 1);
}

/// The bytes that a hexadecimal text in lower case stands for.
std::string FromHex(const std::string& text) {
  const auto digit = [&](std::size_t index) { return text[index] <= '9' ? text[index] - '0' : text[index] - 'a' + 10; };
  std::string bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) bytes += static_cast<char>(digit(i) * 16 + digit(i + 1));
  return bytes;
}

/// The hash under which a catalog of that algorithm would list the file; empty if it is unknown.
std::string MemberHashOf(const std::string& path, const Hashes& hashes, DigestAlgorithm algorithm) {
  const bool isImage = !hashes.imageSha256.empty();
  if (algorithm == DigestAlgorithm::Sha256) return isImage ? hashes.imageSha256 : hashes.fileSha256;
  if (!isImage) return hashes.fileSha1;
  return hashes.imageSha1.empty() ? ImageDigest(path, algorithm) : hashes.imageSha1;
}

}  // namespace

struct Catalogs::Implementation {
  /// Asks the platform where it can be asked about SHA-256, since it knows its catalogs best; otherwise our own index.
  CatalogStore& Store() {
    std::call_once(opened, [this] {
      store = OpenPlatformCatalogs();
      if (store == nullptr) store = IndexCatRoot();
    });
    return *store;
  }

  std::shared_ptr<const CatalogFile> Read(const std::string& catalog) {
    const std::lock_guard<std::mutex> lock(mutex);
    auto& file = files[catalog];
    if (file == nullptr) file = std::make_shared<const CatalogFile>(catalog);
    return file;
  }

  Signature ReportOn(const CatalogVerdict& listed, const std::string& hash) {
    const auto file = Read(listed.catalog);
    Evidence evidence = EvidenceOf(listed.verdict);
    evidence.hasSignature = true;
    evidence.content = file->Content();
    if (file->Digests().count(hash) > 0) evidence.image = DigestCheck::Matches;
    Signature signature = Report(evidence, listed.verdict, file->Data());
    signature.kind = SignatureKind::Catalog;
    signature.catalog = FileName(listed.catalog);
    return signature;
  }

  std::once_flag opened;
  std::unique_ptr<CatalogStore> store;
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<const CatalogFile>> files;
};

Catalogs::Catalogs() : m_implementation(std::make_unique<Implementation>()) {}
Catalogs::~Catalogs() = default;

Signature Catalogs::Verify(const std::string& path, const Hashes& hashes) const {
  Signature best;
  best.state = SignatureState::Unsigned;
  best.code = static_cast<std::uint32_t>(TRUST_E_NOSIGNATURE);
  best.sentence = SentenceFor(best.code);
  for (const DigestAlgorithm algorithm : {DigestAlgorithm::Sha256, DigestAlgorithm::Sha1}) {
    const std::string hash = FromHex(MemberHashOf(path, hashes, algorithm));
    if (hash.empty()) continue;
    for (const CatalogVerdict& listed : m_implementation->Store().Ask(path, {algorithm, hash})) {
      Signature signature = m_implementation->ReportOn(listed, hash);
      if (signature.state == SignatureState::Valid) return signature;
      if (best.kind == SignatureKind::None) best = std::move(signature);
    }
  }
  return best;
}

}  // namespace trust
