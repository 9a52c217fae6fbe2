/// @file
/// A file that is read in pieces.
#pragma once

#include <cstdint>
#include <string>

#include "platform/handles.h"
#include "trust/bytes.h"

namespace trust {

/// A file on a disk, open for reading; others may go on writing, renaming and deleting it.
class File {
 public:
  /// `path` is a full path, UTF-8. Error() says whether that worked.
  explicit File(const std::string& path);

  /// The Windows error of the first failure; 0 if there was no failure.
  std::uint32_t Error() const { return m_error; }
  std::uint64_t Size() const { return m_size; }

  /// Reads `size` bytes at `offset`; false if the file does not have all of them.
  bool ReadAt(std::uint64_t offset, void* bytes, std::size_t size);

  /// Calls `take(Bytes)` for the whole file, in blocks. Returns false and sets the error if not all of it could be
  /// read.
  template <typename Take>
  bool ReadAll(Take take) {
    std::string block(BlockSize, '\0');
    std::uint64_t offset = 0;
    while (offset < m_size) {
      const Bytes bytes = ReadBlock(offset, block);
      if (bytes.empty()) return false;
      take(offset, bytes);
      offset += bytes.size();
    }
    return true;
  }

 private:
  static constexpr std::size_t BlockSize = std::size_t{1} << 18;

  /// The bytes from `offset` on that fit into `block`; empty, with the error set, if they cannot be read.
  Bytes ReadBlock(std::uint64_t offset, std::string& block);
  /// The number of bytes read.
  std::size_t Read(std::uint64_t offset, void* bytes, std::size_t size);

  Orvane::FileHandle m_handle;
  std::uint64_t m_size = 0;
  std::uint32_t m_error = 0;
};

/// The whole file at `path`; empty if it cannot be read or has more than `most` bytes.
std::string ReadSmallFile(const std::string& path, std::size_t most);

}  // namespace trust
