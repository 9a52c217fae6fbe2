// The limits of what is a sound image, each from both sides. The images are made here, of the structures of Windows.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "imagecheck.h"

using namespace Orvane;

namespace {

constexpr DWORD Page = 0x1000;

struct Section {
  DWORD address;
  DWORD size;
  DWORD fileOffset;
  DWORD fileSize;
};

template <typename Structure>
void Put(std::string& bytes, std::size_t offset, const Structure& structure) {
  if (bytes.size() < offset + sizeof(structure)) bytes.resize(offset + sizeof(structure));
  std::memcpy(&bytes[offset], &structure, sizeof(structure));
}

/// A 64-bit image. Its headers take two pages, which is room for more sections than there may be.
struct SmallImage {
  WORD directories = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
  DWORD headersSize = 2 * Page;
  DWORD imageSize = 3 * Page;
  std::vector<Section> sections = {{2 * Page, Page, 2 * Page, Page}};
  /// Content of the first section, which is a resource directory; none when empty.
  std::string resources;

  /// The file, `size` bytes long.
  std::string Bytes(std::size_t size) const {
    std::string bytes;
    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = sizeof(dos);
    Put(bytes, 0, dos);
    IMAGE_NT_HEADERS64 headers{};
    headers.Signature = IMAGE_NT_SIGNATURE;
    headers.FileHeader.NumberOfSections = static_cast<WORD>(sections.size());
    const std::size_t optionalSize =
        offsetof(IMAGE_OPTIONAL_HEADER64, DataDirectory) + directories * sizeof(IMAGE_DATA_DIRECTORY);
    headers.FileHeader.SizeOfOptionalHeader = static_cast<WORD>(optionalSize);
    headers.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR64_MAGIC;
    headers.OptionalHeader.SizeOfImage = imageSize;
    headers.OptionalHeader.SizeOfHeaders = headersSize;
    headers.OptionalHeader.NumberOfRvaAndSizes = directories;
    if (!resources.empty()) {
      IMAGE_DATA_DIRECTORY& directory = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_RESOURCE];
      directory = {sections.front().address, static_cast<DWORD>(resources.size())};
    }
    Put(bytes, sizeof(dos), headers);
    const std::size_t table = sizeof(dos) + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) + optionalSize;
    for (std::size_t i = 0; i < sections.size(); ++i) {
      IMAGE_SECTION_HEADER section{};
      section.VirtualAddress = sections[i].address;
      section.Misc.VirtualSize = sections[i].size;
      section.PointerToRawData = sections[i].fileOffset;
      section.SizeOfRawData = sections[i].fileSize;
      Put(bytes, table + i * sizeof(section), section);
    }
    bytes.resize(std::max(size, bytes.size()));
    if (!resources.empty()) bytes.replace(sections.front().fileOffset, resources.size(), resources);
    bytes.resize(size);
    return bytes;
  }
};

bool IsSound(const std::string& bytes) {
  return IsSoundImage(bytes.size(), [&](std::uint64_t offset, void* target, std::size_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset) return false;
    std::memcpy(target, bytes.data() + offset, size);
    return true;
  });
}

SmallImage WithSections(DWORD count) {
  SmallImage image;
  image.sections.clear();
  for (DWORD i = 0; i < count; ++i) image.sections.push_back({(2 + i) * Page, Page, 0, 0});
  image.imageSize = (2 + count) * Page;
  return image;
}

SmallImage WithDirectories(WORD count) {
  SmallImage image;
  image.directories = count;
  return image;
}

/// A node of a resource directory whose entries all have the identifier `id` and lead to `child`.
std::string Node(std::size_t entries, DWORD id, DWORD child) {
  IMAGE_RESOURCE_DIRECTORY header{};
  header.NumberOfIdEntries = static_cast<WORD>(entries);
  std::string node;
  Put(node, 0, header);
  for (std::size_t i = 0; i < entries; ++i) {
    IMAGE_RESOURCE_DIRECTORY_ENTRY entry{};
    entry.Name = id;
    entry.OffsetToData = child;
    Put(node, sizeof(header) + i * sizeof(entry), entry);
  }
  return node;
}

constexpr DWORD VersionType = 16;
constexpr DWORD IsNode = 0x8000'0000;

/// The image has `resources` in a section that is large enough for them.
std::string WithResources(const std::string& resources) {
  const DWORD size = static_cast<DWORD>((resources.size() + Page - 1) / Page * Page);
  SmallImage image;
  image.sections = {{2 * Page, size, 2 * Page, size}};
  image.imageSize = 2 * Page + size;
  image.resources = resources;
  return image.Bytes(2 * Page + size);
}

/// One version resource, whose `names` names have `languages` languages each.
std::string VersionTree(std::size_t names, std::size_t languages) {
  std::string tree = Node(1, VersionType, IsNode | static_cast<DWORD>(Node(1, VersionType, 0).size()));
  const std::size_t languagesAt = tree.size() + Node(names, 1, 0).size();
  tree += Node(names, 1, IsNode | static_cast<DWORD>(languagesAt));
  const std::size_t dataAt = languagesAt + Node(languages, 1, 0).size();
  tree += Node(languages, 1, static_cast<DWORD>(dataAt));
  IMAGE_RESOURCE_DATA_ENTRY data{};
  data.OffsetToData = 2 * Page;
  data.Size = 1;
  Put(tree, dataAt, data);
  return tree;
}

TEST(ImageLimits, AreNotReachedByASmallImage) { EXPECT_TRUE(IsSound(SmallImage().Bytes(3 * Page))); }

TEST(ImageLimits, Allow96Sections) {
  EXPECT_TRUE(IsSound(WithSections(96).Bytes(2 * Page)));
  EXPECT_FALSE(IsSound(WithSections(97).Bytes(2 * Page)));
}

TEST(ImageLimits, Allow16Directories) {
  EXPECT_TRUE(IsSound(WithDirectories(16).Bytes(3 * Page)));
  EXPECT_FALSE(IsSound(WithDirectories(17).Bytes(3 * Page)));
}

TEST(ImageLimits, AllowASectionThatEndsWithTheFile) {
  EXPECT_TRUE(IsSound(SmallImage().Bytes(3 * Page)));
  EXPECT_FALSE(IsSound(SmallImage().Bytes(3 * Page - 1)));
}

TEST(ImageLimits, AllowASectionThatEndsWithTheImage) {
  SmallImage image;
  EXPECT_TRUE(IsSound(image.Bytes(3 * Page)));
  image.sections.front().size = Page + 1;
  EXPECT_FALSE(IsSound(image.Bytes(3 * Page)));
}

TEST(ImageLimits, CountAnImageInWholePages) {
  SmallImage image;
  image.imageSize = 2 * Page + 1;
  EXPECT_TRUE(IsSound(image.Bytes(3 * Page)));
  image.imageSize = 2 * Page;
  EXPECT_FALSE(IsSound(image.Bytes(3 * Page)));
}

TEST(ImageLimits, GiveASectionOfNoVirtualSizeThatInTheFile) {
  SmallImage image;
  image.resources = VersionTree(1, 1);
  image.sections.front().size = 0;
  EXPECT_TRUE(IsSound(image.Bytes(3 * Page)));
  image.sections.front().fileSize = Page + 1;
  EXPECT_FALSE(IsSound(image.Bytes(4 * Page))) << "reaches out of the image";
}

TEST(ImageLimits, KeepSectionsApart) {
  SmallImage image;
  image.imageSize = 4 * Page;
  image.sections.push_back({3 * Page, Page, 0, 0});
  EXPECT_TRUE(IsSound(image.Bytes(3 * Page)));
  image.sections.front().size = Page + 1;
  EXPECT_FALSE(IsSound(image.Bytes(3 * Page)));
}

TEST(ImageLimits, KeepTheHeadersInFileAndImage) {
  SmallImage image;
  image.sections.front().fileSize = 0;
  EXPECT_TRUE(IsSound(image.Bytes(2 * Page)));
  EXPECT_FALSE(IsSound(image.Bytes(2 * Page - 1))) << "the file has not all of the headers";
  image.headersSize = 3 * Page;
  EXPECT_TRUE(IsSound(image.Bytes(4 * Page)));
  image.headersSize = 3 * Page + 1;
  EXPECT_FALSE(IsSound(image.Bytes(4 * Page))) << "the image has not all of the headers";
}

TEST(ImageLimits, KeepResourcesInWhatTheFileHasOfASection) {
  const std::string resources = VersionTree(1, 1);
  SmallImage image;
  image.resources = resources;
  image.sections.front().fileSize = static_cast<DWORD>(resources.size());
  EXPECT_TRUE(IsSound(image.Bytes(3 * Page)));
  image.sections.front().fileSize -= 1;
  EXPECT_FALSE(IsSound(image.Bytes(3 * Page)));
}

TEST(ImageLimits, Allow4096EntriesOfResources) {
  constexpr DWORD anotherType = 3;
  EXPECT_TRUE(IsSound(WithResources(Node(4096, anotherType, IsNode))));
  EXPECT_FALSE(IsSound(WithResources(Node(4097, anotherType, IsNode))));
  EXPECT_TRUE(IsSound(WithResources(VersionTree(63, 64)))) << "1 + 63 + 63 * 64 = 4096 entries";
  EXPECT_FALSE(IsSound(WithResources(VersionTree(64, 64)))) << "4161 entries, of which no node has many";
}

}  // namespace
