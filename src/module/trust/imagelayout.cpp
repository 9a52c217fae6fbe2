#include "trust/imagelayout.h"

namespace trust {
namespace {

/// Numbers in images are little-endian.
std::optional<std::uint32_t> ReadNumber(const ReadAt& read, std::uint64_t offset, std::size_t size) {
  std::array<unsigned char, 4> bytes{};
  if (!read(offset, bytes.data(), size)) return std::nullopt;
  return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

std::optional<std::uint32_t> ReadWord(const ReadAt& read, std::uint64_t offset) { return ReadNumber(read, offset, 2); }
std::optional<std::uint32_t> ReadDword(const ReadAt& read, std::uint64_t offset) { return ReadNumber(read, offset, 4); }

/// Where the optional header begins.
std::optional<std::uint64_t> FindOptionalHeader(const ReadAt& read) {
  constexpr std::uint32_t dosSignature = 0x5A4D;
  constexpr std::uint32_t peSignature = 0x4550;
  constexpr std::uint64_t fileHeaderSize = 24;
  if (ReadWord(read, 0) != dosSignature) return std::nullopt;
  const auto begin = ReadDword(read, 60);
  if (!begin || ReadDword(read, *begin) != peSignature) return std::nullopt;
  return *begin + fileHeaderSize;
}

/// Where the data directories begin, which depends on the kind of optional header.
std::optional<std::uint64_t> FindDirectories(const ReadAt& read, std::uint64_t optionalHeader) {
  const auto magic = ReadWord(read, optionalHeader);
  if (magic == 0x10Bu) return optionalHeader + 96;
  if (magic == 0x20Bu) return optionalHeader + 112;
  return std::nullopt;
}

}  // namespace

std::optional<ImageLayout> ReadImageLayout(std::uint64_t fileSize, const ReadAt& read) {
  const auto optionalHeader = FindOptionalHeader(read);
  const auto directories = optionalHeader ? FindDirectories(read, *optionalHeader) : std::nullopt;
  const auto directoryCount = directories ? ReadDword(read, *directories - 4) : std::nullopt;
  if (!directoryCount) return std::nullopt;

  ImageLayout layout;
  layout.holes[0] = {*optionalHeader + 64, *optionalHeader + 68};
  layout.padding = static_cast<std::size_t>((8 - fileSize % 8) % 8);
  constexpr std::uint32_t certificateDirectory = 4;
  if (*directoryCount <= certificateDirectory) return layout;

  const std::uint64_t entry = *directories + 8 * certificateDirectory;
  const auto offset = ReadDword(read, entry);
  const auto size = ReadDword(read, entry + 4);
  if (!offset || !size) return std::nullopt;
  layout.holes[1] = {entry, entry + 8};
  layout.namesCertificates = *offset != 0 || *size != 0;
  // A table within the headers or beyond the end of the file is ignored: then the hash covers all bytes.
  if (*size == 0 || *offset < layout.holes[1].end || *offset >= fileSize) return layout;
  layout.holes[2] = {*offset, std::min<std::uint64_t>(std::uint64_t{*offset} + *size, fileSize)};
  layout.padding = 0;
  return layout;
}

}  // namespace trust
