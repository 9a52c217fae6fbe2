// Verification of many images: what a second processor saves, and what hashing costs beyond reading and the digests.
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "figures.h"
#include "inventory/verification.h"
#include "platform/encoding.h"
#include "trust/digest.h"
#include "trust/file.h"
#include "trust/imagehash.h"

namespace {

constexpr std::size_t ImageCount = 300;
constexpr std::size_t ImageSize = 200 << 10;

/// Copies of this program's beginning, each with an end of its own: images of PE, without a signature.
class Images {
 public:
  Images() : m_folder(std::filesystem::temp_directory_path() / L"driverinfo-verification-bench") {
    std::filesystem::create_directories(m_folder);
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::string content(ImageSize, '\0');
    std::ifstream(std::filesystem::path(self), std::ios::binary).read(content.data(), ImageSize);
    for (std::size_t i = 0; i < ImageCount; ++i) {
      const std::filesystem::path path = m_folder / std::to_wstring(i);
      content.replace(ImageSize - 8, 8, std::to_string(10'000'000 + i));
      std::ofstream(path, std::ios::binary).write(content.data(), ImageSize);
      paths.push_back(Orvane::Utf8FromWide(path.wstring()));
    }
  }
  ~Images() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  Images(const Images&) = delete;
  Images& operator=(const Images&) = delete;

  std::vector<std::string> paths;

 private:
  std::filesystem::path m_folder;
};

const Images& TheImages() {
  static const Images images;
  return images;
}

void Require(bool isTrue, const char* otherwise) {
  if (!isTrue) throw std::runtime_error(otherwise);
}

double VerificationSeconds(unsigned threads) {
  inventory::Records records;
  for (const std::string& path : TheImages().paths) {
    records.emplace_back();
    records.back().service = path;
    records.back().path = path;
  }
  inventory::Verification verification;
  verification.threads = threads;
  const double seconds = bench::Seconds([&] { inventory::Verify(records, verification); });
  Require(records.back().signature == "unsigned", "an image was not verified");
  return seconds;
}

double OneThreadSeconds() { return VerificationSeconds(1); }
double TwoThreadsSeconds() { return VerificationSeconds(2); }

/// Reading a file once, and a digest of its bytes for each that is asked for.
double BareSeconds() {
  return bench::Seconds([] {
    for (const std::string& path : TheImages().paths) {
      trust::Digest file(trust::DigestAlgorithm::Sha256);
      trust::Digest image(trust::DigestAlgorithm::Sha256);
      trust::File opened(path);
      const bool isRead = opened.ReadAll([&](std::uint64_t, trust::Bytes bytes) {
        file.Add(bytes);
        image.Add(bytes);
      });
      Require(isRead && file.Finish().size() == 32 && image.Finish().size() == 32, "an image was not read");
    }
  });
}

double HashSeconds() {
  return bench::Seconds([] {
    for (const std::string& path : TheImages().paths) {
      Require(!trust::HashImage(path).imageSha256.empty(), "an image was not hashed");
    }
  });
}

void AddFigures() {
  // Read once, so that all rounds find the files in memory.
  BareSeconds();
  bench::AddComparison({"300 images of 200 KiB verified by two threads over one", "ms", 0.60, "one", &OneThreadSeconds,
                        "two", &TwoThreadsSeconds});
  bench::AddComparison({"Hashes of 300 images of 200 KiB over a bare read and its digests", "ms", 1.20, "bare",
                        &BareSeconds, "hashes", &HashSeconds});
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
