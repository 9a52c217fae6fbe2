#include "inventory/verification.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "inventory/predicates.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "trust/catalog.h"
#include "trust/imagehash.h"
#include "trust/imagenames.h"
#include "trust/signature.h"

namespace inventory {
namespace {

/// A file, and the services that load it.
struct Image {
  std::string path;
  std::vector<Record*> services;
};

/// The same text for all paths of a file; for a file that cannot be opened, its path.
std::string FileIdentity(const std::string& path) {
  constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const Orvane::FileHandle file(CreateFileW(Orvane::WideFromUtf8(path).c_str(), FILE_READ_ATTRIBUTES, share, nullptr,
                                            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  BY_HANDLE_FILE_INFORMATION info{};
  if (!file || !GetFileInformationByHandle(file.get(), &info)) return Orvane::LowerCase(path);
  return std::to_string(info.dwVolumeSerialNumber) + ":" + std::to_string(info.nFileIndexHigh) + ":" +
         std::to_string(info.nFileIndexLow);
}

std::vector<Image> ImagesOf(Records& records) {
  std::vector<Image> images;
  std::map<std::string, std::size_t> places;
  for (Record& record : records) {
    if (!IsService(record) || IsImageMissing(record) || record.path.empty()) continue;
    const auto [place, isNew] = places.emplace(FileIdentity(record.path), images.size());
    if (isNew) images.push_back({record.path, {}});
    images[place->second].services.push_back(&record);
  }
  return images;
}

std::string ProblemText(const std::string& sentence, std::uint32_t code) {
  char number[16];
  std::snprintf(number, sizeof(number), "0x%08X", static_cast<unsigned>(code));
  return sentence.empty() ? std::string(number) : sentence + " (" + number + ")";
}

/// What verification found out about one image.
struct Finding {
  trust::Hashes hashes;
  trust::Signature signature;
  std::vector<trust::KnownMatch> known;
};

void Set(const Finding& finding, Record& record) {
  const trust::Signature& signature = finding.signature;
  record.sha256 = finding.hashes.fileSha256;
  record.image_sha256 = finding.hashes.imageSha256;
  record.signature = trust::NameOf(signature.state);
  record.signature_kind = trust::NameOf(signature.kind);
  record.catalog = signature.catalog;
  record.signer = signature.Signer();
  record.signer_thumbprint = signature.Thumbprint();
  record.signed_at = signature.facts.signedAt;
  record.known = finding.known;
  if (signature.state == trust::SignatureState::Valid) return;
  record.signature_problem = finding.hashes.errorCode != 0 ? ProblemText(finding.hashes.error, finding.hashes.errorCode)
                                                           : ProblemText(signature.sentence, signature.code);
}

/// Verifies the images, several at a time.
class Verifier {
 public:
  Verifier(std::vector<Image> images, const Verification& verification)
      : m_images(std::move(images)),
        m_verification(verification),
        m_wanted(verification.known != nullptr ? verification.known->WantedHashes() : trust::Wanted()) {}

  bool Run() {
    const unsigned processors = std::max(1u, std::thread::hardware_concurrency());
    const std::size_t wanted = m_verification.threads != 0 ? m_verification.threads : processors;
    constexpr std::size_t most = 64;
    const std::size_t count = std::min({wanted, most, m_images.size()});
    // This thread is one of them.
    std::vector<std::thread> others;
    try {
      for (std::size_t i = 1; i < count; ++i) others.emplace_back([this] { Work(false); });
    } catch (...) {
      // The threads that have started do all the work.
    }
    Work(true);
    for (std::thread& other : others) other.join();
    if (m_failure) std::rethrow_exception(m_failure);
    return !m_isStopped && Report(m_images.size());
  }

 private:
  bool Report(std::size_t done) const {
    return !m_verification.progress || m_verification.progress(done, m_images.size());
  }

  /// The next image to verify; null if none is left.
  const Image* Next() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isStopped || m_failure || m_next == m_images.size()) return nullptr;
    return &m_images[m_next++];
  }

  /// Reports the progress of the verification while the other threads go on. False if it is to stop.
  bool GoesOn() {
    std::size_t done = 0;
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      done = m_next;
    }
    if (done == m_images.size() || Report(done)) return true;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isStopped = true;
    return false;
  }

  /// Only the calling thread reports: not every host can be called on a thread that it does not know.
  void Work(bool reports) {
    try {
      while (!reports || GoesOn()) {
        const Image* const image = Next();
        if (image == nullptr) return;
        const Finding finding = LookAt(image->path);
        // No other image has these records.
        for (Record* const service : image->services) Set(finding, *service);
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_failure = std::current_exception();
    }
  }

  Finding LookAt(const std::string& path) const {
    Finding finding;
    finding.hashes = trust::HashImage(path, m_wanted);
    if (finding.hashes.errorCode != 0) return finding;
    finding.signature = trust::Verify(path, finding.hashes, m_catalogs);
    if (m_verification.known != nullptr) {
      finding.known = m_verification.known->Match(finding.hashes, finding.signature, trust::ReadImageNames(path));
    }
    return finding;
  }

  const std::vector<Image> m_images;
  const Verification& m_verification;
  const trust::Wanted m_wanted;
  const trust::Catalogs m_catalogs;
  std::mutex m_mutex;
  std::size_t m_next = 0;
  bool m_isStopped = false;
  std::exception_ptr m_failure;
};

}  // namespace

bool Verify(Records& records, const Verification& verification) {
  return Verifier(ImagesOf(records), verification).Run();
}

}  // namespace inventory
