// Driver images whose version resource is damaged, and a system that answers questions about one by anything.
#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <regex>

#include "guardedmemory.h"
#include "hostile.h"
#include "imagefile.h"
#include "importhook.h"
#include "packagefiles.h"
#include "scratchmachine.h"

using Orvane::PackageFiles;
using Orvane::SysFileInfo;
using test::GuardedMemory;
using test::HostileBatch;
using test::ImageFile;
using test::Random;
using test::ThisProgram;

namespace {

/// The version resources that the damaged ones were.
std::vector<std::string> GoodResources() {
  std::vector<test::VersionSettings> all(4);
  all[0].texts = {{L"CompanyName", L"Example Systems"}, {L"FileDescription", L"Example driver"}};
  all[1].texts = {{L"FileDescription", L"Treiber f\xFCr \x30C9\x30E9\x30A4\x30D0"}, {L"CompanyName", L""}};
  all[1].language = 0x0007;
  all[1].codePage = 0x04E4;
  all[2].texts = {{L"CompanyName", std::wstring(3000, L'\x20AC')}, {L"FileDescription", std::wstring(20'000, L'x')}};
  std::vector<std::string> resources;
  for (test::VersionSettings& settings : all) {
    for (std::size_t part = 0; part < 4; ++part) {
      settings.file[part] = static_cast<WORD>(6 + part);
      settings.product[part] = static_cast<WORD>(65535 - part);
    }
    const std::vector<char> bytes = test::VersionResourceBytes(settings);
    resources.emplace_back(bytes.begin(), bytes.end());
  }
  return resources;
}

constexpr std::size_t WordSize = 2;

void SetWord(std::string& bytes, std::size_t offset, std::size_t word) {
  for (std::size_t i = 0; i < WordSize && offset + i < bytes.size(); ++i)
    bytes[offset + i] = static_cast<char>(word >> 8 * i);
}

/// Where the UTF-16 form of `text` stands in `bytes`; npos when it does not.
std::size_t FindWide(const std::string& bytes, const std::wstring& text) {
  std::string wide;
  for (const wchar_t c : text) wide += {static_cast<char>(c), static_cast<char>(c >> 8)};
  return bytes.find(wide);
}

std::size_t HostileWord(Random& random) {
  static constexpr std::size_t words[] = {0,     1,      2,      3,      5,      6,      0x28,   0x34,  0x5C,
                                          0x600, 0x1000, 0x7FFE, 0x7FFF, 0x8000, 0xFFF0, 0xFFFE, 0xFFFF};
  return random.OneIn(3) ? random.Below(0x10000) : random.Pick(words);
}

/// A length that a block of the resource begins with: its own, or that of its value.
void DamageLength(std::string& bytes, Random& random) {
  static const std::wstring keys[] = {L"VS_VERSION_INFO", L"StringFileInfo",  L"VarFileInfo", L"Translation",
                                      L"CompanyName",     L"FileDescription", L"040904b0"};
  const std::size_t key = FindWide(bytes, random.Pick(keys));
  const std::size_t block =
      key == std::string::npos || key < 6 ? random.Below(bytes.size()) & ~std::size_t{3} : key - 6;
  SetWord(bytes, block + WordSize * random.Below(3), HostileWord(random));
}

void TakeAwayTerminator(std::string& bytes, Random& random) {
  for (std::size_t i = random.Below(bytes.size()) & ~std::size_t{1}; i + 1 < bytes.size(); i += WordSize) {
    if (bytes[i] != 0 || bytes[i + 1] != 0) continue;
    SetWord(bytes, i, 1 + random.Below(0xFFFF));
    return;
  }
}

void EmptyTranslations(std::string& bytes, Random& random) {
  const std::size_t key = FindWide(bytes, L"Translation");
  if (key == std::string::npos || key < 6) return;
  SetWord(bytes, key - 4, 0);
  if (random.OneIn(2)) SetWord(bytes, key - 6, 30);
  if (random.OneIn(4)) bytes.resize(key + 24);
}

std::string DamagedResource(const std::vector<std::string>& good, Random& random) {
  std::string bytes = random.Pick(good);
  for (std::size_t damage = 1 + random.Below(4); damage > 0; --damage) {
    switch (random.Below(8)) {
      case 0:
        bytes[random.Below(bytes.size())] = random.Byte();
        break;
      case 1:
        TakeAwayTerminator(bytes, random);
        break;
      case 2:
        EmptyTranslations(bytes, random);
        break;
      case 3:
        bytes.resize(1 + random.Below(bytes.size()));
        break;
      case 4:
        for (char& c : bytes) c = random.OneIn(20) ? random.Byte() : c;
        break;
      default:
        DamageLength(bytes, random);
    }
  }
  return bytes;
}

/// Reads an image into a record that held others, and what it holds then.
SysFileInfo Read(const std::string& path) {
  SysFileInfo info{"old", "old", "old", "old"};
  PackageFiles::GetDriveInfoFromSysFile(path, info);
  return info;
}

/// The four numbers of a version text, as the fixed block holds them; fails the test when it is no such text.
std::string VersionBytes(const std::string& version) {
  static const std::regex form("(\\d{1,5})\\.(\\d{1,5})\\.(\\d{1,5})\\.(\\d{1,5})");
  std::smatch parts;
  EXPECT_TRUE(std::regex_match(version, parts, form)) << version;
  std::string bytes(8, '\0');
  const std::size_t offsets[] = {2, 0, 6, 4};
  for (std::size_t i = 1; i < parts.size(); ++i) {
    const unsigned long number = std::stoul(parts[i]);
    EXPECT_LE(number, 65535u);
    SetWord(bytes, offsets[i - 1], number);
  }
  return bytes;
}

/// Both versions or none, made of bytes that stand in `buffer` or of the zeros behind it.
void ExpectVersionsOf(const std::string& buffer, const SysFileInfo& info) {
  EXPECT_EQ(info.file_version.empty(), info.product_version.empty());
  // A root block that says it is text, or of the old 16-bit form, is read as such.
  if (info.file_version.empty() || buffer[4] != 0 || buffer[5] != 0) return;
  const std::string versions = VersionBytes(info.file_version) + VersionBytes(info.product_version);
  EXPECT_NE((buffer + std::string(64, '\0')).find(versions), std::string::npos)
      << info.file_version << " and " << info.product_version << " are not in the resource";
}

/// Texts that `buffer` could hold, in any code page.
void ExpectTextsOf(const std::string& buffer, const SysFileInfo& info) {
  for (const std::string& text : {info.description, info.company}) {
    EXPECT_LE(text.size(), 3 * buffer.size());
    EXPECT_EQ(text.find('\0'), std::string::npos);
  }
}

TEST(HostileImages, AreReadFromFiles) {
  std::vector<std::unique_ptr<ImageFile>> images;
  for (const std::string& resource : GoodResources()) {
    images.push_back(std::make_unique<ImageFile>("hostile" + std::to_string(images.size()) + ".sys", resource));
  }
  std::string buffer;
  HOOK(read, ThisProgram(), GetFileVersionInfoA, [&](const char* path, DWORD handle, DWORD size, void* bytes) {
    const BOOL result = read.Real(path, handle, size, bytes);
    buffer.assign(static_cast<const char*>(bytes), size);
    return result;
  });
  std::size_t withVersion = 0;
  HostileBatch batch("image files");
  batch.ForEach([&](Random& random) {
    buffer.assign(6, '\0');
    ImageFile& image = *random.Pick(images);
    std::string resource = DamagedResource({image.Good()}, random);
    resource.resize(random.OneIn(4) ? random.Below(image.Good().size() + 1) : image.Good().size());
    image.Rewrite(resource, image.Place(), static_cast<DWORD>(resource.size()));
    const SysFileInfo info = Read(image.Path());
    ExpectVersionsOf(buffer, info);
    ExpectTextsOf(buffer, info);
    withVersion += !info.file_version.empty();
  });
  EXPECT_GT(withVersion, batch.Size() / 2) << "most inputs are too damaged to reach anything";
}

/// Numbers of the headers and of the resource directory, by which the platform finds its way to the resource.
void DamageWay(std::string& image, std::size_t entry, Random& random) {
  const std::size_t largest = std::size_t{1} << 8 * (1 + random.Below(4));
  const std::size_t number = random.OneIn(3) ? random.Below(largest) : random.Below(0x20000);
  const std::size_t offset = random.OneIn(2) ? entry - random.Below(0x60) : random.Below(0x400);
  for (std::size_t i = 0; i < 1 + random.Below(4); ++i) image[offset + i] = static_cast<char>(number >> 8 * i);
}

TEST(HostileImages, MayHaveDamagedHeadersAndDirectories) {
  ImageFile image("hostile.sys", GoodResources().front());
  std::size_t withVersion = 0;
  HostileBatch batch("image headers and resource directories");
  batch.ForEach([&](Random& random) {
    std::string bytes = image.Bytes();
    for (std::size_t damage = 1 + random.Below(3); damage > 0; --damage) DamageWay(bytes, image.Entry(), random);
    image.Rewrite(bytes);
    const SysFileInfo info = Read(image.Path());
    EXPECT_EQ(info.file_version.empty(), info.product_version.empty());
    if (!info.file_version.empty()) VersionBytes(info.file_version);
    EXPECT_LE(info.description.size() + info.company.size(), bytes.size());
    withVersion += !info.file_version.empty();
  });
  EXPECT_GT(withVersion, 0u);
  EXPECT_LT(withVersion, batch.Size());
}

/// Stands in for the files: each reading gives `resource`, in a buffer with nothing behind it.
class ResourceInMemory {
 public:
  explicit ResourceInMemory(std::size_t largest)
      : m_memory(largest),
        m_size(ThisProgram(), "GetFileVersionInfoSizeA", [this](const char*, DWORD*) { return m_told; }),
        m_read(ThisProgram(), "GetFileVersionInfoA",
               [this](const char*, DWORD, DWORD size, void* buffer) {
                 std::memcpy(buffer, m_resource.data(), std::min<std::size_t>(size, m_resource.size()));
                 return TRUE;
               }),
        m_allocate(ThisProgram(), "VirtualAlloc",
                   [this](void* place, std::size_t size, DWORD type, DWORD protection) -> void* {
                     if (size != m_told + Room) return m_allocate.Real(place, size, type, protection);
                     ++m_buffers;
                     return m_memory.Zeros(size);
                   }),
        m_free(ThisProgram(), "VirtualFree", [this](void* memory, std::size_t size, DWORD type) {
          return m_memory.Holds(memory) ? TRUE : m_free.Real(memory, size, type);
        }) {}

  /// As the system does: room for the narrow forms of all texts.
  void Set(std::string resource, DWORD told) {
    m_resource = std::move(resource);
    m_told = told;
  }
  void Set(const std::string& resource) { Set(resource, static_cast<DWORD>(2 * resource.size() + 4)); }

  /// How many buffers stood in guarded memory so far.
  std::size_t Buffers() const { return m_buffers; }

  /// What the library allocates beyond what the system asks for.
  static constexpr std::size_t Room = 1 << 19;

 private:
  GuardedMemory m_memory;
  std::string m_resource;
  DWORD m_told = 0;
  std::size_t m_buffers = 0;
  test::ImportHook<&GetFileVersionInfoSizeA> m_size;
  test::ImportHook<&GetFileVersionInfoA> m_read;
  test::ImportHook<&VirtualAlloc> m_allocate;
  test::ImportHook<&VirtualFree> m_free;
};

constexpr std::size_t LargestBuffer = 1 << 20;

TEST(HostileImages, AreReadWithinTheBuffer) {
  const std::vector<std::string> good = GoodResources();
  ResourceInMemory resource(LargestBuffer);
  HostileBatch batch("resources before a guard page");
  batch.ForEach([&](Random& random) {
    const std::string bytes = DamagedResource(good, random);
    const auto told = static_cast<DWORD>(random.OneIn(8) ? 1 + random.Below(bytes.size()) : 2 * bytes.size() + 4);
    resource.Set(bytes, told);
    const SysFileInfo info = Read("x.sys");
    std::string buffer = bytes;
    buffer.resize(std::max<std::size_t>(told, 6));
    ExpectVersionsOf(buffer, info);
    ExpectTextsOf(buffer, info);
  });
  EXPECT_EQ(resource.Buffers(), batch.Size());
}

/// A value of `size` bytes as a system without care could place it: anywhere in the buffer, or at its very end.
char* AnyPlace(char* buffer, std::size_t size, Random& random) {
  return buffer + (random.OneIn(2) ? size - random.Below(81) : random.Below(size + 1));
}

TEST(HostileImages, MayHaveTheirValuesAnywhere) {
  ResourceInMemory resource(LargestBuffer);
  GuardedMemory elsewhere(1 << 16);
  Random* current = nullptr;
  std::string other;
  std::size_t size = 0;
  HOOK(query, ThisProgram(), VerQueryValueA, [&](const void* block, const char*, void** value, UINT* length) -> BOOL {
    Random& random = *current;
    *length = static_cast<UINT>(random.OneIn(3) ? random.Next() : random.Below(70));
    char* const buffer = const_cast<char*>(static_cast<const char*>(block));
    std::memset(buffer + size - 80, 'x', 80);
    *value = AnyPlace(buffer, size, random);
    if (random.OneIn(6)) *value = nullptr;
    // A value elsewhere is whole: the largest structure, or a text with its terminator.
    if (random.OneIn(6)) *value = elsewhere.Put(other + '\0');
    return random.OneIn(8) ? FALSE : TRUE;
  });
  HostileBatch batch("values of version resources");
  batch.ForEach([&](Random& random) {
    current = &random;
    const std::string bytes(1 + random.Below(2000), static_cast<char>(1 + random.Below(255)));
    other = random.Text(sizeof(VS_FIXEDFILEINFO) + random.Size(60'000));
    resource.Set(bytes, static_cast<DWORD>(bytes.size()));
    size = bytes.size() + ResourceInMemory::Room;
    const SysFileInfo info = Read("x.sys");
    for (const std::string& text : {info.description, info.company}) {
      EXPECT_LE(text.size(), std::max(size, other.size()));
      EXPECT_EQ(text.find('\0'), std::string::npos);
    }
    if (!info.file_version.empty()) VersionBytes(info.file_version);
    EXPECT_EQ(info.file_version.empty(), info.product_version.empty());
  });
}

}  // namespace
