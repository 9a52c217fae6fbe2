#include "trust/imagehash.h"

#include <optional>
#include <vector>

#include "trust/digest.h"
#include "trust/file.h"
#include "trust/imagedigest.h"
#include "trust/imagelayout.h"
#include "trust/sentences.h"

namespace trust {
namespace {

/// One of the digests computed in a pass over a file, and where its result goes.
struct Running {
  Digest digest;
  bool ofImage;
  std::string* result;
};

/// Reads `file` once and feeds its bytes to every digest. Digests of the image need a layout.
bool ReadOnce(File& file, const std::optional<ImageLayout>& layout, std::vector<Running>& running) {
  const bool complete = file.ReadAll([&](std::uint64_t offset, Bytes block) {
    for (Running& one : running) {
      if (!one.ofImage) one.digest.Add(block);
    }
    if (!layout) return;
    ForEachCovered(*layout, offset, block, [&](Bytes part) {
      for (Running& one : running) {
        if (one.ofImage) one.digest.Add(part);
      }
    });
  });
  if (!complete) return false;
  for (Running& one : running) {
    if (one.ofImage) one.digest.Add(std::string(layout->padding, '\0'));
    *one.result = Hex(one.digest.Finish());
  }
  return true;
}

std::optional<ImageLayout> LayoutOf(File& file) {
  return ReadImageLayout(file.Size(), [&](std::uint64_t offset, void* bytes, std::size_t size) {
    return file.ReadAt(offset, bytes, size);
  });
}

}  // namespace

Hashes HashImage(const std::string& path, const Wanted& wanted) {
  Hashes hashes;
  File file(path);
  const auto layout = LayoutOf(file);
  std::vector<Running> running;
  const auto add = [&](bool isWanted, bool ofImage, DigestAlgorithm algorithm, std::string& result) {
    if (isWanted && (layout || !ofImage)) running.push_back({Digest(algorithm), ofImage, &result});
  };
  add(true, false, DigestAlgorithm::Sha256, hashes.fileSha256);
  add(wanted.fileSha1, false, DigestAlgorithm::Sha1, hashes.fileSha1);
  add(wanted.fileMd5, false, DigestAlgorithm::Md5, hashes.fileMd5);
  add(true, true, DigestAlgorithm::Sha256, hashes.imageSha256);
  add(wanted.imageSha1, true, DigestAlgorithm::Sha1, hashes.imageSha1);
  add(wanted.imageMd5, true, DigestAlgorithm::Md5, hashes.imageMd5);
  if (file.Error() == 0 && ReadOnce(file, layout, running)) {
    hashes.size = file.Size();
    return hashes;
  }
  Hashes none;
  none.errorCode = file.Error();
  none.error = SentenceFor(none.errorCode);
  return none;
}

std::string ImageDigest(const std::string& path, DigestAlgorithm algorithm) {
  std::string result;
  File file(path);
  const auto layout = LayoutOf(file);
  std::vector<Running> running;
  running.push_back({Digest(algorithm), true, &result});
  if (!layout || !ReadOnce(file, layout, running)) return {};
  return result;
}

}  // namespace trust
