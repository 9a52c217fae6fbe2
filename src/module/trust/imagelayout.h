/// @file
/// Which bytes of a file the hash of its image covers. Uses no platform API.
///
/// Signing must not change the hash: checksum, certificate directory entry and certificate table are left out, and an
/// image without a table counts as padded to a multiple of 8 bytes, because a signer adds padding before the table.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include "trust/bytes.h"

namespace trust {

/// Reads `size` bytes at `offset` of a file into `bytes`; false if the file does not have all of them.
using ReadAt = std::function<bool(std::uint64_t offset, void* bytes, std::size_t size)>;

/// The bytes [begin, end) of a file.
struct FileRange {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  bool operator==(const FileRange& other) const { return begin == other.begin && end == other.end; }
};

struct ImageLayout {
  /// The parts that are left out, in the order of the file; a part that does not exist is empty.
  std::array<FileRange, 3> holes;
  /// The number of zero bytes that count after the last byte.
  std::size_t padding = 0;
  /// Whether the certificate directory names a table, even one outside the file.
  bool namesCertificates = false;

  /// The part of the certificate table that is inside the file.
  const FileRange& Certificates() const { return holes[2]; }
};

/// Nullopt for a file that is not a PE image or ends before its directories.
std::optional<ImageLayout> ReadImageLayout(std::uint64_t fileSize, const ReadAt& read);

/// Calls `keep(Bytes)` for each part of `block`, which is at `offset` of the file, that is not in a hole.
template <typename Keep>
void ForEachCovered(const ImageLayout& layout, std::uint64_t offset, Bytes block, Keep keep) {
  const std::uint64_t end = offset + block.size();
  std::uint64_t position = offset;
  const auto keepUntil = [&](std::uint64_t limit) {
    if (limit <= position) return;
    keep(block.substr(static_cast<std::size_t>(position - offset), static_cast<std::size_t>(limit - position)));
    position = limit;
  };
  for (const FileRange& hole : layout.holes) {
    keepUntil(std::min(hole.begin, end));
    position = std::max(position, std::min(hole.end, end));
  }
  keepUntil(end);
}

}  // namespace trust
