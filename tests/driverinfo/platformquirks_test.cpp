// What depends on the platform, with both answers.
#include "platformquirks.h"

#include <gmock/gmock.h>

#include <cstring>

#include "imagecheck.h"
#include "importhook.h"
#include "machine.h"
#include "packagefiles.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

using namespace Orvane;
using test::ThisProgram;
using testing::ElementsAre;

namespace {

/// The platform says of itself that it is Windows, or Wine.
class Platform {
 public:
  explicit Platform(bool isWine) : m_isWine(isWine) {}

 private:
  bool m_isWine;
  HOOK(m_lookUp, ThisProgram(), GetProcAddress, [this](HMODULE module, const char* name) -> FARPROC {
    if (std::strcmp(name, "wine_get_version") != 0) return m_lookUp.Real(module, name);
    return m_isWine ? m_lookUp.Real(GetModuleHandleW(L"kernel32.dll"), "GetModuleHandleW") : nullptr;
  });
};

/// Of which images the version functions are asked; they answer nothing.
class AskedImages {
 public:
  const std::vector<std::string>& Paths() const { return m_paths; }

 private:
  std::vector<std::string> m_paths;
  HOOK(m_size, ThisProgram(), GetFileVersionInfoSizeA, [this](const char* path, DWORD*) -> DWORD {
    m_paths.emplace_back(path);
    return 0;
  });
};

/// An image that says half of its signature only, on which Wine is not to be asked.
class DamagedImage {
 public:
  DamagedImage() : m_file(test::TemporaryPath("damaged.sys"), L"images\\full.sys") {
    const std::wstring path(Path().begin(), Path().end());
    std::string bytes = test::FileContent(path);
    DWORD headers = 0;
    std::memcpy(&headers, &bytes[offsetof(IMAGE_DOS_HEADER, e_lfanew)], sizeof(headers));
    bytes[headers + 2] = 'x';
    test::WriteText(path, bytes);
  }

  const std::string& Path() const { return m_file.Path(); }

 private:
  test::ScratchFile m_file;
};

void ReadVersion(const std::string& path) {
  SysFileInfo info;
  PackageFiles::GetDriveInfoFromSysFile(path, info);
}

TEST(PlatformQuirks, KnowTheRealPlatform) { EXPECT_EQ(SurvivesDamagedImages(), !test::IsWine()); }

TEST(PlatformQuirks, FollowWhatThePlatformSaysOfItself) {
  {
    const Platform windows(false);
    EXPECT_TRUE(SurvivesDamagedImages());
  }
  const Platform wine(true);
  EXPECT_FALSE(SurvivesDamagedImages());
}

TEST(PlatformQuirks, LetWindowsBeAskedAboutAnyImage) {
  const DamagedImage damaged;
  const std::string good = test::ProgramFile(L"images\\full.sys");
  ASSERT_FALSE(IsSoundImage(damaged.Path()));
  const Platform windows(false);
  int opened = 0;
  HOOK(open, ThisProgram(), fopen, [&](const char* path, const char* mode) {
    ++opened;
    return open.Real(path, mode);
  });
  const AskedImages asked;
  ReadVersion(damaged.Path());
  ReadVersion(good);
  EXPECT_THAT(asked.Paths(), ElementsAre(damaged.Path(), good));
  EXPECT_EQ(opened, 0) << "no image is looked at first";
}

TEST(PlatformQuirks, LetWineBeAskedAboutSoundImagesOnly) {
  const DamagedImage damaged;
  const std::string good = test::ProgramFile(L"images\\full.sys");
  const Platform wine(true);
  const AskedImages asked;
  ReadVersion(damaged.Path());
  ReadVersion(good);
  EXPECT_THAT(asked.Paths(), ElementsAre(good));
}

TEST(PlatformQuirks, ReadAnImageTheSameOnWindows) {
  const Platform windows(false);
  SysFileInfo info;
  PackageFiles::GetDriveInfoFromSysFile(test::ProgramFile(L"images\\full.sys"), info);
  EXPECT_THAT((std::vector<std::string>{info.description, info.company, info.file_version, info.product_version}),
              ElementsAre("Example bus driver", "Example Systems", "6.2.9200.16384", "10.0.1.2"));
}

}  // namespace
