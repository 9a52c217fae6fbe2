#include "imagecheck.h"

#include <gmock/gmock.h>

#include <cstring>

#include "scratchmachine.h"

using namespace Orvane;

namespace {

std::string Content(const std::string& path) {
  std::string bytes;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) throw std::runtime_error(path + " cannot be read");
  char block[4096];
  while (const std::size_t size = std::fread(block, 1, sizeof(block), file)) bytes.append(block, size);
  std::fclose(file);
  return bytes;
}

bool IsSound(const std::string& bytes) {
  return IsSoundImage(bytes.size(), [&](std::uint64_t offset, void* target, std::size_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset) return false;
    std::memcpy(target, bytes.data() + offset, size);
    return true;
  });
}

std::size_t Number(const std::string& bytes, std::size_t offset) {
  DWORD number = 0;
  std::memcpy(&number, &bytes[offset], sizeof(number));
  return number;
}

/// `bytes` with another number at `offset`.
std::string With(std::string bytes, std::size_t offset, DWORD number) {
  std::memcpy(&bytes[offset], &number, sizeof(number));
  return bytes;
}

class ImageCheck : public testing::Test {
 protected:
  std::string good = Content(test::ProgramFile(L"images\\full.sys"));
  std::size_t headers = Number(good, 60);
  std::size_t optional = headers + 24;
  std::size_t firstSection = optional + Number(good, headers + 20) % 0x10000;
};

TEST_F(ImageCheck, FindsRealImagesSound) {
  for (const wchar_t* const file :
       {L"images\\full.sys", L"images\\noresource.sys", L"images\\twotranslations.sys", L"logging.dll",
        L"driverinfo.dll", L"driverinfo_unit_tests.exe", L"libstdc++-6.dll"}) {
    if (std::wcsstr(file, L"lib") != nullptr && !test::IsWine()) continue;
    EXPECT_TRUE(IsSound(Content(test::ProgramFile(file)))) << file;
    EXPECT_TRUE(IsSoundImage(test::ProgramFile(file))) << file;
  }
  for (const char* const file :
       {"\\kernel32.dll", "\\ntdll.dll", "\\shell32.dll", "\\drivers\\http.sys", "\\drivers\\ndis.sys"}) {
    EXPECT_TRUE(IsSoundImage(test::SystemDirectory() + file)) << file;
  }
}

TEST_F(ImageCheck, LeavesToThePlatformWhatIsNoImage) {
  EXPECT_TRUE(IsSoundImage("C:\\no such file.sys"));
  EXPECT_TRUE(IsSoundImage(test::SystemDirectory())) << "a folder";
  EXPECT_TRUE(IsSound(""));
  EXPECT_TRUE(IsSound("MZ"));
  EXPECT_TRUE(IsSound(std::string(10'000, 'M')));
  EXPECT_TRUE(IsSound(With(good, 60, 0x7FFFFFFF)));
}

TEST_F(ImageCheck, RefusesSignaturesThatAreNoDrivers) {
  EXPECT_FALSE(IsSound(With(good, headers, 0x454E))) << "an image of 16-bit Windows";
  EXPECT_FALSE(IsSound(With(good, headers, 0x14550))) << "half of the signature";
}

TEST_F(ImageCheck, RefusesHeadersThatLieOutsideOfTheImage) {
  EXPECT_FALSE(IsSound(good.substr(0, optional + 20)));
  EXPECT_FALSE(IsSound(With(good, headers + 20, 0x38F0))) << "size of the optional header";
  EXPECT_FALSE(IsSound(With(good, headers + 4, 0x00FF8664))) << "255 sections";
  EXPECT_FALSE(IsSound(With(good, optional + 56, 0x1000))) << "size of the image";
  EXPECT_FALSE(IsSound(With(good, optional + 60, 0x10))) << "size of the headers";
  EXPECT_FALSE(IsSound(With(good, firstSection + 20, 0x7FFFFFFF))) << "a section behind the file";
  EXPECT_FALSE(IsSound(With(good, firstSection + 8, 0x7FFFFFFF))) << "a section behind the image";
  EXPECT_FALSE(IsSound(With(good, firstSection + 40 + 12, 0))) << "a section before the one before it";
}

TEST_F(ImageCheck, RefusesResourcesThatLieOutsideOfTheImage) {
  EXPECT_FALSE(IsSound(With(good, optional + 112 + 16, 0x7000000)));
  // Without resources there is nothing to go astray.
  EXPECT_TRUE(IsSound(With(With(good, optional + 112 + 16, 0), optional + 112 + 20, 0)));
}

}  // namespace
