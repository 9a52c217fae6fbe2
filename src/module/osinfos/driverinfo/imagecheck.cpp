#include "imagecheck.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

namespace Orvane {
namespace {

/// The header at `offset` of the file, of which only the first `size` bytes are read; nullopt if the file does not have
/// all of them. Numbers in an image are little-endian, as is memory on every machine that runs Windows.
template <typename Header>
std::optional<Header> Read(const ReadBytes& read, std::uint64_t offset, std::size_t size = sizeof(Header)) {
  Header header{};
  if (!read(offset, &header, size)) return std::nullopt;
  return header;
}

/// A part of the image: where it is mapped, and which part of the file it comes from.
struct Section {
  std::uint64_t address;
  std::uint64_t size;
  std::uint64_t fileOffset;
  std::uint64_t fileSize;
};

/// The beginning of IMAGE_NT_HEADERS, the same for 32 and 64 bits.
struct NtHeader {
  DWORD Signature;
  IMAGE_FILE_HEADER FileHeader;
};

struct Image {
  std::uint64_t size = 0;
  std::vector<Section> sections;
  /// Address of the resource directory; 0 if there is no such directory.
  std::uint64_t resources = 0;
  std::uint64_t resourcesSize = 0;
};

enum class Soundness { NoImage, Sound, Unsound };

std::uint64_t RoundUp(std::uint64_t number, std::uint64_t unit) { return (number + unit - 1) / unit * unit; }

/// Reads the sections, which must lie inside the file and inside the image, in ascending order.
bool ReadSections(const ReadBytes& read, std::uint64_t table, std::size_t count, std::uint64_t fileSize, Image& image) {
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto header = Read<IMAGE_SECTION_HEADER>(read, table + i * sizeof(IMAGE_SECTION_HEADER));
    if (!header) return false;
    Section section{header->VirtualAddress, header->Misc.VirtualSize, header->PointerToRawData, header->SizeOfRawData};
    if (section.size == 0) section.size = section.fileSize;
    if (section.fileSize > 0 && section.fileOffset + section.fileSize > fileSize) return false;
    if (section.address < end || section.address + section.size > image.size) return false;
    end = section.address + section.size;
    image.sections.push_back(section);
  }
  return true;
}

/// The fields of the optional header that are read. Its two forms have some of them in different places.
struct OptionalHeader {
  std::size_t directories;
  std::uint64_t imageSize;
  std::uint64_t headersSize;
  DWORD directoryCount;
  IMAGE_DATA_DIRECTORY resources;
};

template <typename Form>
OptionalHeader FieldsOf(const Form& header) {
  return {offsetof(Form, DataDirectory), header.SizeOfImage, header.SizeOfHeaders, header.NumberOfRvaAndSizes,
          header.DataDirectory[IMAGE_DIRECTORY_ENTRY_RESOURCE]};
}

/// Reads both forms up to the entry of the resource directory. If there is no optional header, `soundness` says what
/// the file is instead.
std::optional<OptionalHeader> ReadOptionalHeader(const ReadBytes& read, std::uint64_t offset, Soundness& soundness) {
  constexpr std::size_t size = offsetof(IMAGE_OPTIONAL_HEADER64, DataDirectory) +
                               (IMAGE_DIRECTORY_ENTRY_RESOURCE + 1) * sizeof(IMAGE_DATA_DIRECTORY);
  const auto header = Read<IMAGE_OPTIONAL_HEADER64>(read, offset, size);
  soundness = header ? Soundness::NoImage : Soundness::Unsound;
  if (!header) return std::nullopt;
  if (header->Magic == IMAGE_NT_OPTIONAL_HDR64_MAGIC) return FieldsOf(*header);
  if (header->Magic != IMAGE_NT_OPTIONAL_HDR32_MAGIC) return std::nullopt;
  IMAGE_OPTIONAL_HEADER32 header32{};
  static_assert(sizeof(header32) >= size);
  std::memcpy(&header32, &*header, size);
  return FieldsOf(header32);
}

Soundness ReadImage(std::uint64_t fileSize, const ReadBytes& read, Image& image) {
  const auto dos = Read<IMAGE_DOS_HEADER>(read, 0);
  if (!dos || dos->e_magic != IMAGE_DOS_SIGNATURE) return Soundness::NoImage;
  const std::uint64_t begin = static_cast<DWORD>(dos->e_lfanew);
  const auto header = Read<NtHeader>(read, begin);
  if (!header) return Soundness::NoImage;
  // An image of 16-bit Windows is not a driver, and a file with only half of the signature is not an image; yet the
  // platform reads both.
  if (LOWORD(header->Signature) == IMAGE_OS2_SIGNATURE) return Soundness::Unsound;
  if (LOWORD(header->Signature) != IMAGE_NT_SIGNATURE) return Soundness::NoImage;
  if (header->Signature != IMAGE_NT_SIGNATURE) return Soundness::Unsound;
  Soundness withoutOptional{};
  const auto optional = ReadOptionalHeader(read, begin + sizeof(NtHeader), withoutOptional);
  if (!optional) return withoutOptional;

  const std::size_t optionalSize = header->FileHeader.SizeOfOptionalHeader;
  const std::size_t sectionCount = header->FileHeader.NumberOfSections;
  constexpr std::size_t directoriesSize = IMAGE_NUMBEROF_DIRECTORY_ENTRIES * sizeof(IMAGE_DATA_DIRECTORY);
  constexpr std::size_t mostSections = 96;
  if (optionalSize < optional->directories || optionalSize > optional->directories + directoriesSize ||
      sectionCount > mostSections) {
    return Soundness::Unsound;
  }
  constexpr std::uint64_t page = 0x1000;
  constexpr std::uint64_t largestImage = 0x7FFF'0000;
  image.size = RoundUp(optional->imageSize, page);
  const std::uint64_t table = begin + sizeof(NtHeader) + optionalSize;
  if (image.size > largestImage || optional->headersSize > image.size || optional->headersSize > fileSize ||
      table + sectionCount * sizeof(IMAGE_SECTION_HEADER) > optional->headersSize) {
    return Soundness::Unsound;
  }
  if (!ReadSections(read, table, sectionCount, fileSize, image)) return Soundness::Unsound;
  if (optional->directoryCount > IMAGE_DIRECTORY_ENTRY_RESOURCE) {
    image.resources = optional->resources.VirtualAddress;
    image.resourcesSize = optional->resources.Size;
  }
  return Soundness::Sound;
}

/// Where [address, address + size) of the image is in the file; nullopt if no section holds all of it.
std::optional<std::uint64_t> FileOffset(const Image& image, std::uint64_t address, std::uint64_t size) {
  for (const Section& section : image.sections) {
    const std::uint64_t inFile = std::min(section.size, section.fileSize);
    if (address >= section.address && address + size <= section.address + inFile) {
      return section.fileOffset + address - section.address;
    }
  }
  return std::nullopt;
}

/// Whether all entries of the directory node at `node`, and everything they lead to `depth` levels below, lie inside
/// the image. The number of entries followed is limited, so that no image takes long.
bool IsSoundNode(const Image& image, const ReadBytes& read, std::uint64_t node, int depth, int& budget);

/// The header of type `Header` at `address` of the image; nullopt unless one section holds all of it.
template <typename Header>
std::optional<Header> ReadMapped(const Image& image, const ReadBytes& read, std::uint64_t address) {
  const auto offset = FileOffset(image, address, sizeof(Header));
  return offset ? Read<Header>(read, *offset) : std::nullopt;
}

/// Whether a name (a length, then that many characters) lies inside the image.
bool IsSoundName(const Image& image, const ReadBytes& read, std::uint64_t name) {
  const auto length = ReadMapped<WORD>(image, read, name);
  return length && FileOffset(image, name, sizeof(WORD) + sizeof(WCHAR) * std::uint64_t{*length});
}

/// The same as IsSoundNode() for one entry of a node.
bool IsSoundEntry(const Image& image, const ReadBytes& read, const IMAGE_RESOURCE_DIRECTORY_ENTRY& entry, int depth,
                  int& budget) {
  constexpr DWORD isText = IMAGE_RESOURCE_NAME_IS_STRING;
  constexpr DWORD isNode = IMAGE_RESOURCE_DATA_IS_DIRECTORY;
  constexpr WORD versionType = 16;
  if ((entry.Name & isText) != 0) {
    if (!IsSoundName(image, read, image.resources + (entry.Name & ~isText))) return false;
  } else if (depth == 2 && entry.Id != versionType) {
    return true;
  }
  const std::uint64_t child = image.resources + (entry.OffsetToData & ~isNode);
  if (((entry.OffsetToData & isNode) != 0) != (depth > 0)) return false;
  if (depth > 0) return IsSoundNode(image, read, child, depth - 1, budget);
  const auto data = ReadMapped<IMAGE_RESOURCE_DATA_ENTRY>(image, read, child);
  return data && FileOffset(image, data->OffsetToData, data->Size);
}

bool IsSoundNode(const Image& image, const ReadBytes& read, std::uint64_t node, int depth, int& budget) {
  const auto header = ReadMapped<IMAGE_RESOURCE_DIRECTORY>(image, read, node);
  if (!header) return false;
  const std::uint64_t entries = node + sizeof(*header);
  const std::size_t count = std::size_t{header->NumberOfNamedEntries} + header->NumberOfIdEntries;
  const auto offset = FileOffset(image, entries, count * sizeof(IMAGE_RESOURCE_DIRECTORY_ENTRY));
  if (!offset) return false;
  for (std::size_t i = 0; i < count; ++i) {
    const auto entry = Read<IMAGE_RESOURCE_DIRECTORY_ENTRY>(read, *offset + i * sizeof(IMAGE_RESOURCE_DIRECTORY_ENTRY));
    if (!entry || --budget < 0 || !IsSoundEntry(image, read, *entry, depth, budget)) return false;
  }
  return true;
}

/// A file with one page cached: the check reads places close together, and each read of the file costs more than all
/// the work on its result.
class FilePage {
 public:
  FilePage(std::FILE* file, std::uint64_t size) : m_file(file), m_size(size) {}

  /// Like ReadBytes; `count` is at most a page.
  bool Read(std::uint64_t offset, void* bytes, std::size_t count) {
    if (count > m_page.size() || offset > m_size || count > m_size - offset) return false;
    const bool isKept = offset >= m_begin && offset + count <= m_begin + m_count;
    if (!isKept && (!Load(offset) || count > m_count)) return false;
    std::memcpy(bytes, &m_page[static_cast<std::size_t>(offset - m_begin)], count);
    return true;
  }

 private:
  bool Load(std::uint64_t offset) {
    m_begin = offset;
    m_count = 0;
    if (std::fseek(m_file, static_cast<long>(offset), SEEK_SET) != 0) return false;
    m_count = std::fread(m_page.data(), 1, m_page.size(), m_file);
    return true;
  }

  std::FILE* m_file;
  std::uint64_t m_size;
  std::array<char, 4096> m_page{};
  std::uint64_t m_begin = 0;
  std::size_t m_count = 0;
};

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
  FilePage page(file.get(), static_cast<std::uint64_t>(size));
  return IsSoundImage(static_cast<std::uint64_t>(size), [&page](std::uint64_t offset, void* bytes, std::size_t count) {
    return page.Read(offset, bytes, count);
  });
}

}  // namespace Orvane
