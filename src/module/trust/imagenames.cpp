#include "trust/imagenames.h"

#include <algorithm>
#include <array>
#include <vector>

namespace trust {
namespace {

/// A part of a file. Numbers are little-endian; bytes outside of it read as 0.
class Part {
 public:
  Part() = default;
  Part(const std::uint8_t* begin, std::size_t size) : m_begin(begin), m_size(size) {}

  std::size_t size() const { return m_size; }
  std::uint8_t At(std::size_t offset) const { return offset < m_size ? m_begin[offset] : std::uint8_t{0}; }
  std::uint16_t Word(std::size_t offset) const { return static_cast<std::uint16_t>(At(offset) | At(offset + 1) << 8); }
  std::uint32_t Double(std::size_t offset) const {
    return Word(offset) | static_cast<std::uint32_t>(Word(offset + 2)) << 16;
  }
  /// As much of it as there is.
  Part Slice(std::size_t offset, std::size_t size) const {
    if (offset >= m_size) return {};
    return {m_begin + offset, std::min(size, m_size - offset)};
  }

 private:
  const std::uint8_t* m_begin = nullptr;
  std::size_t m_size = 0;
};

// --- Finding the version resource

std::vector<std::uint8_t> Read(const ReadFileBytes& read, std::uint64_t offset, std::size_t size) {
  std::vector<std::uint8_t> bytes(size);
  if (size == 0) return bytes;
  return read(offset, bytes.data(), size) ? bytes : std::vector<std::uint8_t>();
}

/// The sections of an image, and where its resources are.
class Image {
 public:
  explicit Image(const ReadFileBytes& read) : m_read(read) {
    const std::vector<std::uint8_t> dosHeader = Read(read, 0, 64);
    const Part dos(dosHeader.data(), dosHeader.size());
    if (dos.Word(0) != 0x5A4D) return;
    const std::uint64_t peOffset = dos.Double(60);
    constexpr std::size_t headers = 24;
    const std::vector<std::uint8_t> peHeader = Read(read, peOffset, headers);
    const Part pe(peHeader.data(), peHeader.size());
    if (pe.Double(0) != 0x4550) return;
    const std::size_t optionalSize = pe.Word(20);
    const std::vector<std::uint8_t> optionalHeader = Read(read, peOffset + headers, optionalSize);
    const Part optional(optionalHeader.data(), optionalHeader.size());
    // The third data directory, after those of exports and imports.
    constexpr std::uint16_t pe32Plus = 0x20B;
    m_resources = optional.Double((optional.Word(0) == pe32Plus ? 112 : 96) + 2 * 8);
    constexpr std::size_t sectionSize = 40;
    m_sections = Read(read, peOffset + headers + optionalSize, pe.Word(6) * sectionSize);
  }

  /// The address of the resource directory; 0 if there is none.
  std::uint32_t Resources() const { return m_resources; }

  /// `size` bytes at `address`; empty unless a single section of the file contains all of them.
  std::vector<std::uint8_t> At(std::uint64_t address, std::size_t size) const {
    constexpr std::size_t sectionSize = 40;
    const Part sections(m_sections.data(), m_sections.size());
    for (std::size_t at = 0; at + sectionSize <= sections.size(); at += sectionSize) {
      const std::uint64_t begin = sections.Double(at + 12);
      const std::uint64_t inFile = sections.Double(at + 16);
      if (address >= begin && address + size <= begin + inFile) {
        return Read(m_read, sections.Double(at + 20) + (address - begin), size);
      }
    }
    return {};
  }

 private:
  const ReadFileBytes& m_read;
  std::uint32_t m_resources = 0;
  std::vector<std::uint8_t> m_sections;
};

/// Where an entry of the resource directory at `offset` leads: the entry `id`, or the first one if no `id` is given.
/// The highest bit is set for a directory. Nullopt if there is no such entry.
std::optional<std::uint32_t> Entry(const Image& image, std::uint64_t offset, std::optional<std::uint32_t> id) {
  const std::vector<std::uint8_t> header = image.At(image.Resources() + offset, 16);
  const Part directory(header.data(), header.size());
  const std::size_t count = std::size_t{directory.Word(12)} + directory.Word(14);
  if (count == 0) return std::nullopt;
  constexpr std::size_t entrySize = 8;
  const std::vector<std::uint8_t> list = image.At(image.Resources() + offset + 16, count * entrySize);
  const Part entries(list.data(), list.size());
  for (std::size_t at = 0; at + entrySize <= entries.size(); at += entrySize) {
    if (!id || entries.Double(at) == *id) return entries.Double(at + 4);
  }
  return std::nullopt;
}

std::vector<std::uint8_t> VersionResource(const Image& image) {
  constexpr std::uint32_t isDirectory = 0x80000000;
  constexpr std::uint32_t versionType = 16;
  // The length of the block is a 16-bit number.
  constexpr std::size_t largest = 0xFFFF;
  if (image.Resources() == 0) return {};
  const auto type = Entry(image, 0, versionType);
  if (!type || (*type & isDirectory) == 0) return {};
  const auto name = Entry(image, *type & ~isDirectory, std::nullopt);
  if (!name || (*name & isDirectory) == 0) return {};
  const auto language = Entry(image, *name & ~isDirectory, std::nullopt);
  if (!language || (*language & isDirectory) != 0) return {};
  const std::vector<std::uint8_t> entry = image.At(image.Resources() + std::uint64_t{*language}, 8);
  const Part data(entry.data(), entry.size());
  return image.At(data.Double(0), std::min<std::size_t>(data.Double(4), largest));
}

// --- Reading the version resource: blocks of a key, a value and further blocks

void AppendUtf8(std::uint32_t character, std::string& text) {
  const auto more = [&](unsigned shift) { text += static_cast<char>(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | character >> 6);
    more(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | character >> 12);
    more(6);
    more(0);
  } else {
    text += static_cast<char>(0xF0 | character >> 18);
    more(12);
    more(6);
    more(0);
  }
}

/// The UTF-16 text up to its terminator; half a character becomes U+FFFD.
std::string TextOf(Part bytes) {
  std::string text;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    std::uint32_t character = bytes.Word(at);
    if (character == 0) break;
    const std::uint32_t next = bytes.Word(at + 2);
    const bool isPair = (character & 0xFC00) == 0xD800 && (next & 0xFC00) == 0xDC00;
    if (isPair) {
      character = 0x10000 + ((character & 0x3FF) << 10) + (next & 0x3FF);
      at += 2;
    } else if ((character & 0xF800) == 0xD800) {
      character = 0xFFFD;
    }
    AppendUtf8(character, text);
  }
  return text;
}

std::size_t Aligned(std::size_t offset) { return (offset + 3) & ~std::size_t{3}; }

struct Block {
  std::string key;
  Part value;
  Part children;
};

/// The block at the beginning of `bytes`, and the bytes after it.
std::optional<Block> TakeBlock(Part& bytes) {
  constexpr std::size_t header = 6;
  const std::size_t length = bytes.Word(0);
  if (length < header || length > bytes.size()) return std::nullopt;
  const Part block = bytes.Slice(0, length);
  bytes = bytes.Slice(Aligned(length), bytes.size());
  Block taken;
  taken.key = TextOf(block.Slice(header, length));
  std::size_t keyEnd = header;
  while (keyEnd + 1 < length && block.Word(keyEnd) != 0) keyEnd += 2;
  const std::size_t valueBegin = Aligned(keyEnd + 2);
  // For a text, most tools store the number of characters here, not of bytes.
  const bool isText = block.Word(4) == 1;
  const std::size_t valueSize = std::size_t{block.Word(2)} * (isText ? 2 : 1);
  taken.value = block.Slice(valueBegin, valueSize);
  taken.children = block.Slice(Aligned(valueBegin + valueSize), length);
  return taken;
}

/// The block in `bytes` that has the key, or the first block for an empty key.
std::optional<Block> FindBlock(Part bytes, std::string_view key) {
  while (std::optional<Block> block = TakeBlock(bytes)) {
    if (key.empty() || block->key == key) return block;
  }
  return std::nullopt;
}

std::optional<FileVersion> FixedVersion(Part fixed) {
  constexpr std::uint32_t signature = 0xFEEF04BD;
  if (fixed.size() < 16 || fixed.Double(0) != signature) return std::nullopt;
  return FileVersion{fixed.Double(8)} << 32 | fixed.Double(12);
}

}  // namespace

std::optional<FileVersion> ParseFileVersion(std::string_view text) {
  FileVersion version = 0;
  std::size_t at = 0;
  for (int part = 0; part < 4; ++part) {
    std::uint32_t number = 0;
    const std::size_t begin = at;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
      number = number * 10 + static_cast<std::uint32_t>(text[at] - '0');
      if (number > 0xFFFF) return std::nullopt;
    }
    if (at == begin && part == 0) return std::nullopt;
    version = version << 16 | number;
    if (at == begin || at == text.size() || (text[at] != '.' && text[at] != ',')) {
      return version << 16 * (3 - part);
    }
    ++at;
    while (at < text.size() && text[at] == ' ') ++at;
  }
  return version;
}

std::string FileVersionText(FileVersion version) {
  std::string text;
  for (int shift = 48; shift >= 0; shift -= 16) {
    text += (text.empty() ? "" : ".") + std::to_string(version >> shift & 0xFFFF);
  }
  return text;
}

ImageNames ReadImageNames(const ReadFileBytes& read) {
  ImageNames names;
  const std::vector<std::uint8_t> resource = VersionResource(Image(read));
  const std::optional<Block> root = FindBlock({resource.data(), resource.size()}, "VS_VERSION_INFO");
  if (!root) return names;
  names.version = FixedVersion(root->value);
  const std::optional<Block> tables = FindBlock(root->children, "StringFileInfo");
  const std::optional<Block> table = tables ? FindBlock(tables->children, {}) : std::nullopt;
  if (!table) return names;
  const auto text = [&table](std::string_view key) {
    const std::optional<Block> found = FindBlock(table->children, key);
    return found ? TextOf(found->value) : std::string();
  };
  names.originalName = text("OriginalFilename");
  names.internalName = text("InternalName");
  names.productName = text("ProductName");
  names.description = text("FileDescription");
  return names;
}

}  // namespace trust
