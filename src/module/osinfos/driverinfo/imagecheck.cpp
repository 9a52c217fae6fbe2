#include "imagecheck.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace Orvane {
namespace {

/// Some bytes of the file, numbers in it standing with their lowest byte first.
template <std::size_t Size>
struct Block {
  std::array<unsigned char, Size> bytes{};

  std::uint32_t Word(std::size_t offset) const { return bytes[offset] | bytes[offset + 1] << 8; }
  std::uint32_t Number(std::size_t offset) const { return Word(offset) | Word(offset + 2) << 16; }
};

template <std::size_t Size>
std::optional<Block<Size>> ReadBlock(const ReadBytes& read, std::uint64_t offset) {
  Block<Size> block;
  if (!read(offset, block.bytes.data(), Size)) return std::nullopt;
  return block;
}

/// A part of the image: where it stands once mapped, and what the file holds of it.
struct Section {
  std::uint64_t address;
  std::uint64_t size;
  std::uint64_t fileOffset;
  std::uint64_t fileSize;
};

constexpr std::size_t FileHeaderSize = 24;
constexpr std::size_t SectionHeaderSize = 40;

struct Image {
  std::uint64_t size = 0;
  std::vector<Section> sections;
  /// Address of the resource directory; 0 when there is none.
  std::uint64_t resources = 0;
  std::uint64_t resourcesSize = 0;
};

enum class Soundness { NoImage, Sound, Unsound };

std::uint64_t RoundUp(std::uint64_t number, std::uint64_t unit) { return (number + unit - 1) / unit * unit; }

/// Reads the sections, which must lie in the file, in the image, and one behind the other.
bool ReadSections(const ReadBytes& read, std::uint64_t table, std::size_t count, std::uint64_t fileSize, Image& image) {
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto header = ReadBlock<SectionHeaderSize>(read, table + i * SectionHeaderSize);
    if (!header) return false;
    Section section{header->Number(12), header->Number(8), header->Number(20), header->Number(16)};
    if (section.size == 0) section.size = section.fileSize;
    if (section.fileSize > 0 && section.fileOffset + section.fileSize > fileSize) return false;
    if (section.address < end || section.address + section.size > image.size) return false;
    end = section.address + section.size;
    image.sections.push_back(section);
  }
  return true;
}

Soundness ReadImage(std::uint64_t fileSize, const ReadBytes& read, Image& image) {
  const auto dos = ReadBlock<64>(read, 0);
  if (!dos || dos->Word(0) != 0x5A4D) return Soundness::NoImage;
  const std::uint64_t begin = dos->Number(60);
  const auto header = ReadBlock<FileHeaderSize>(read, begin);
  if (!header) return Soundness::NoImage;
  // Images of 16-bit Windows are no drivers, and what says only half of its signature is no image: yet the platform
  // reads both.
  constexpr std::uint32_t signature16 = 0x454E;
  constexpr std::uint32_t signature = 0x4550;
  if (header->Word(0) == signature16) return Soundness::Unsound;
  if (header->Word(0) != signature) return Soundness::NoImage;
  if (header->Number(0) != signature) return Soundness::Unsound;
  // All of both forms up to the entry of the resources, which is the third of the directories.
  constexpr std::size_t directories32 = 96;
  constexpr std::size_t directories64 = 112;
  constexpr std::size_t resourcesEnd = 3 * 8;
  const auto optional = ReadBlock<directories64 + resourcesEnd>(read, begin + FileHeaderSize);
  if (!optional) return Soundness::Unsound;
  const bool is64 = optional->Word(0) == 0x20B;
  if (!is64 && optional->Word(0) != 0x10B) return Soundness::NoImage;

  const std::size_t directories = is64 ? directories64 : directories32;
  const std::size_t optionalSize = header->Word(20);
  const std::size_t sectionCount = header->Word(6);
  constexpr std::size_t mostDirectories = 16;
  constexpr std::size_t mostSections = 96;
  if (optionalSize < directories || optionalSize > directories + mostDirectories * 8 || sectionCount > mostSections) {
    return Soundness::Unsound;
  }
  constexpr std::uint64_t page = 0x1000;
  constexpr std::uint64_t largestImage = 0x7FFF'0000;
  image.size = RoundUp(optional->Number(56), page);
  const std::uint64_t headersSize = optional->Number(60);
  const std::uint64_t table = begin + FileHeaderSize + optionalSize;
  if (image.size > largestImage || headersSize > image.size || headersSize > fileSize ||
      table + sectionCount * SectionHeaderSize > headersSize) {
    return Soundness::Unsound;
  }
  if (!ReadSections(read, table, sectionCount, fileSize, image)) return Soundness::Unsound;
  if (optional->Number(directories - 4) > 2) {
    image.resources = optional->Number(directories + 16);
    image.resourcesSize = optional->Number(directories + 20);
  }
  return Soundness::Sound;
}

/// Where [address, address + size) of the image stands in the file; none when no section holds all of it.
std::optional<std::uint64_t> FileOffset(const Image& image, std::uint64_t address, std::uint64_t size) {
  for (const Section& section : image.sections) {
    const std::uint64_t inFile = std::min(section.size, section.fileSize);
    if (address >= section.address && address + size <= section.address + inFile) {
      return section.fileOffset + address - section.address;
    }
  }
  return std::nullopt;
}

/// Whether all entries of the directory node at `node`, and what they lead to `depth` levels below, lie in the image.
/// At most so many are followed that no image takes long.
bool IsSoundNode(const Image& image, const ReadBytes& read, std::uint64_t node, int depth, int& budget) {
  constexpr std::size_t nodeSize = 16;
  constexpr std::size_t entrySize = 8;
  const auto offset = FileOffset(image, node, nodeSize);
  const auto header = offset ? ReadBlock<nodeSize>(read, *offset) : std::nullopt;
  if (!header) return false;
  const std::size_t count = header->Word(12) + header->Word(14);
  if (!FileOffset(image, node + nodeSize, count * entrySize)) return false;
  constexpr std::uint32_t isNode = 0x8000'0000;
  constexpr std::uint32_t versionType = 16;
  for (std::size_t i = 0; i < count; ++i) {
    const auto entry = ReadBlock<entrySize>(read, *offset + nodeSize + i * entrySize);
    if (!entry || --budget < 0) return false;
    // A name is a length and so many characters.
    const std::uint64_t name = image.resources + (entry->Number(0) & ~isNode);
    if ((entry->Number(0) & isNode) != 0) {
      const auto length = FileOffset(image, name, 2);
      const auto word = length ? ReadBlock<2>(read, *length) : std::nullopt;
      if (!word || !FileOffset(image, name, 2 + 2 * std::uint64_t{word->Word(0)})) return false;
    } else if (depth == 2 && entry->Word(0) != versionType) {
      continue;
    }
    const std::uint64_t child = image.resources + (entry->Number(4) & ~isNode);
    if (((entry->Number(4) & isNode) != 0) != (depth > 0)) return false;
    if (depth > 0) {
      if (!IsSoundNode(image, read, child, depth - 1, budget)) return false;
      continue;
    }
    const auto data = FileOffset(image, child, 16);
    const auto place = data ? ReadBlock<16>(read, *data) : std::nullopt;
    if (!place || !FileOffset(image, place->Number(0), place->Number(4))) return false;
  }
  return true;
}

}  // namespace

bool IsSoundImage(std::uint64_t fileSize, const ReadBytes& read) {
  Image image;
  const Soundness soundness = ReadImage(fileSize, read, image);
  if (soundness != Soundness::Sound) return soundness == Soundness::NoImage;
  if (image.resources == 0 || image.resourcesSize == 0) return true;
  int budget = 4096;
  return IsSoundNode(image, read, image.resources, 2, budget);
}

bool IsSoundImage(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return true;
  const long size = std::ftell(file.get());
  if (size < 0) return true;
  return IsSoundImage(static_cast<std::uint64_t>(size), [&](std::uint64_t offset, void* bytes, std::size_t count) {
    return offset + count <= static_cast<std::uint64_t>(size) &&
           std::fseek(file.get(), static_cast<long>(offset), SEEK_SET) == 0 &&
           std::fread(bytes, 1, count, file.get()) == count;
  });
}

}  // namespace Orvane
