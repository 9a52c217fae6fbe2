// Hashes of real files, against those of other programs.
#include "trust/imagehash.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "importhook.h"
#include "platform/encoding.h"
#include "samples.h"
#include "temporaryfiles.h"
#include "trust/imagelayout.h"

using test::SamplePath;
using test::ThisProgram;
using testing::ElementsAre;
using trust::FileRange;
using trust::Hashes;
using trust::HashImage;
using trust::ImageLayout;
using trust::Wanted;

namespace {

constexpr Wanted Everything{true, true, true, true};

/// A file while it lives, whose name is in no code page.
class SmallFile {
 public:
  explicit SmallFile(const std::string& bytes) {
    std::ofstream(std::filesystem::path(m_path), std::ios::binary) << bytes;
  }
  std::string Path() const { return Orvane::Utf8FromWide(m_path); }

 private:
  test::TemporaryFolder m_folder;
  std::wstring m_path = m_folder.Path(L"hash me \x2192 \xFC \x65E5.bin");
};

TEST(ImageHashes, OfEverySampleAreThoseOfOsslsigncode) {
  std::size_t images = 0;
  for (const test::Sample& sample : test::Samples()) {
    const Hashes hashes = HashImage(SamplePath(sample.file), Everything);
    EXPECT_EQ(hashes.fileSha256, sample.sha256) << sample.file;
    EXPECT_EQ(hashes.size, test::SampleBytes(sample.file).size()) << sample.file;
    EXPECT_EQ(hashes.error, "") << sample.file;
    // It does not see a table that is not the end of the file.
    if (sample.imageSha256.empty()) continue;
    ++images;
    EXPECT_EQ(hashes.imageSha256, sample.imageSha256) << sample.file;
    EXPECT_EQ(hashes.imageSha1, sample.imageSha1) << sample.file;
  }
  EXPECT_GT(images, 25u);
}

TEST(ImageHashes, OfAFileThatIsNoImageAreThoseOfTheFileAlone) {
  const SmallFile file("abc");
  const Hashes hashes = HashImage(file.Path(), Everything);
  // The examples of the standards.
  EXPECT_EQ(hashes.fileSha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(hashes.fileSha1, "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(hashes.fileMd5, "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(hashes.imageSha256, "");
  EXPECT_EQ(hashes.imageSha1, "");
  EXPECT_EQ(hashes.imageMd5, "");
  EXPECT_EQ(hashes.size, 3u);
}

TEST(ImageHashes, ThatNobodyWantsAreEmpty) {
  const Hashes hashes = HashImage(SamplePath("signed.sys"));
  EXPECT_EQ(hashes.fileSha256.size(), 64u);
  EXPECT_EQ(hashes.imageSha256.size(), 64u);
  EXPECT_EQ(hashes.fileSha1 + hashes.fileMd5 + hashes.imageSha1 + hashes.imageMd5, "");
}

TEST(ImageHashes, OfAFileThatCannotBeReadSayWhy) {
  const Hashes missing = HashImage(SamplePath("no-such.sys"), Everything);
  EXPECT_EQ(missing.errorCode, static_cast<std::uint32_t>(ERROR_FILE_NOT_FOUND));
  EXPECT_NE(missing.error, "");
  EXPECT_EQ(missing.fileSha256 + missing.imageSha256 + missing.fileMd5, "");
  EXPECT_NE(HashImage(SamplePath(".")).errorCode, 0u);
  const SmallFile file("locked");
  const HANDLE lock = CreateFileW(Orvane::WideFromUtf8(file.Path()).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(HashImage(file.Path()).errorCode, static_cast<std::uint32_t>(ERROR_SHARING_VIOLATION));
  CloseHandle(lock);
  EXPECT_EQ(HashImage(file.Path()).errorCode, 0u);
}

TEST(ImageHashes, TakeOneReadOfTheFileInBlocks) {
  const std::string image = test::SampleBytes("signed.sys") + std::string(3'000'000, 'x');
  const SmallFile file(image);
  std::uint64_t bytes = 0;
  DWORD largest = 0;
  HOOK(read, ThisProgram(), ReadFile, [&](HANDLE handle, void* buffer, DWORD size, DWORD* done, OVERLAPPED* place) {
    bytes += size;
    largest = std::max(largest, size);
    return read.Real(handle, buffer, size, done, place);
  });
  EXPECT_EQ(HashImage(file.Path(), Everything).size, image.size());
  // The headers are looked at before.
  EXPECT_LE(bytes, image.size() + 64);
  EXPECT_GE(bytes, image.size());
  EXPECT_LE(largest, 1u << 18);
}

TEST(ImageHashes, OfAFileThatBecomesShorterWhileItIsReadAreNotGiven) {
  const SmallFile file(std::string(100'000, 'x'));
  HOOK(read, ThisProgram(), ReadFile, [&](HANDLE, void*, DWORD, DWORD* done, OVERLAPPED*) {
    *done = 0;
    return TRUE;
  });
  const Hashes hashes = HashImage(file.Path());
  EXPECT_EQ(hashes.errorCode, static_cast<std::uint32_t>(ERROR_FILE_INVALID));
  EXPECT_EQ(hashes.fileSha256, "");
}

/// The least that is an image of 64 bits, with a certificate table at `table`.
std::string SmallImage(std::uint32_t table, std::uint32_t size, std::size_t fileSize, char directories = 16) {
  std::string image(fileSize, '\0');
  const auto put = [&](std::size_t offset, std::uint32_t number) {
    for (int i = 0; i < 4; ++i) image[offset + static_cast<std::size_t>(i)] = static_cast<char>(number >> 8 * i);
  };
  image[0] = 'M';
  image[1] = 'Z';
  put(60, 64);
  put(64, 0x4550);
  put(88, 0x20B);
  image[88 + 108] = directories;
  put(88 + 112 + 32, table);
  put(88 + 112 + 36, size);
  return image;
}

std::optional<ImageLayout> LayoutOf(const std::string& image) {
  return trust::ReadImageLayout(image.size(), [&](std::uint64_t offset, void* bytes, std::size_t size) {
    if (offset > image.size() || size > image.size() - offset) return false;
    image.copy(static_cast<char*>(bytes), size, static_cast<std::size_t>(offset));
    return true;
  });
}

constexpr FileRange Checksum{152, 156};
constexpr FileRange Entry{232, 240};
constexpr FileRange NoTable{};

TEST(ImageLayouts, LeaveOutWhatSigningChanges) {
  const auto layout = LayoutOf(SmallImage(512, 64, 576));
  ASSERT_TRUE(layout);
  EXPECT_THAT(layout->holes, ElementsAre(Checksum, Entry, (FileRange{512, 576})));
  EXPECT_EQ(layout->padding, 0u);
  EXPECT_TRUE(layout->namesCertificates);
}

TEST(ImageLayouts, PadAnImageWithoutTableToEightBytes) {
  const auto layout = LayoutOf(SmallImage(0, 0, 515));
  ASSERT_TRUE(layout);
  EXPECT_THAT(layout->holes, ElementsAre(Checksum, Entry, NoTable));
  EXPECT_EQ(layout->padding, 5u);
  EXPECT_FALSE(layout->namesCertificates);
  EXPECT_EQ(LayoutOf(SmallImage(0, 0, 512))->padding, 0u);
}

TEST(ImageLayouts, CutATableThatReachesBehindTheFile) {
  const auto layout = LayoutOf(SmallImage(512, 0xFFFFFFFF, 576));
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->Certificates(), (FileRange{512, 576}));
  EXPECT_TRUE(layout->namesCertificates);
}

TEST(ImageLayouts, TakeATableAmongTheHeadersOrBehindTheFileForNone) {
  for (const std::uint32_t table : {0u, 1u, 100u, 239u, 576u, 0xFFFFFFF8u}) {
    const auto layout = LayoutOf(SmallImage(table, 64, 576));
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->Certificates(), NoTable) << table;
    EXPECT_TRUE(layout->namesCertificates) << table;
  }
  EXPECT_EQ(LayoutOf(SmallImage(240, 64, 576))->Certificates(), (FileRange{240, 304}));
}

TEST(ImageLayouts, OfImagesWithFewDirectoriesHaveNoEntry) {
  const auto layout = LayoutOf(SmallImage(512, 64, 576, 4));
  ASSERT_TRUE(layout);
  EXPECT_THAT(layout->holes, ElementsAre(Checksum, FileRange{}, NoTable));
  EXPECT_FALSE(layout->namesCertificates);
}

TEST(ImageLayouts, AreThoseOfWholeHeadersOnly) {
  const std::string image = SmallImage(0, 0, 240);
  EXPECT_TRUE(LayoutOf(image));
  for (std::size_t size = 0; size < image.size(); ++size) EXPECT_FALSE(LayoutOf(image.substr(0, size))) << size;
}

}  // namespace
