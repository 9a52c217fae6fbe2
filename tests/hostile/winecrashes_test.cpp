// Inputs on which a version of Wine itself ends the process, each with the reason, and that the library does not come
// to that. Windows answers all of them with a failure, as later versions of Wine do with some.
#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <cstring>

#include "guardedmemory.h"
#include "imagefile.h"
#include "packagefiles.h"

using namespace Orvane;
using test::GuardedMemory;
using test::ImageFile;

namespace {

/// Only Wine may crash; the report of the tests says whether this one does.
void MayCrashWine(const std::function<void()>& act) {
  const bool crashes = test::Crashes(act);
  testing::Test::RecordProperty("crashes", crashes ? "yes" : "no");
  EXPECT_TRUE(test::IsWine() || !crashes);
}

std::string Resource() {
  test::VersionSettings settings;
  settings.texts = {{L"CompanyName", L"Example Systems"}};
  settings.file[0] = 6;
  const std::vector<char> bytes = test::VersionResourceBytes(settings);
  return std::string(bytes.begin(), bytes.end());
}

std::string FileVersion(const std::string& path) {
  SysFileInfo info;
  PackageFiles::GetDriveInfoFromSysFile(path, info);
  return info.file_version;
}

// SetupFindFirstLineA follows the handle of a failed open. The library tests it.
TEST(WineCrashes, OnTheHandleOfAnInfThatCannotBeOpened) {
  MayCrashWine([] {
    INFCONTEXT line{};
    SetupFindFirstLineA(INVALID_HANDLE_VALUE, "version", "DriverVer", &line);
  });
  std::vector<DriverData> drivers;
  PackageFiles::ReadInfPackage("C:\\no such file.inf", drivers);
  EXPECT_EQ(drivers.size(), 0u);
}

// VerQueryValueA writes the narrow form of a text behind the resource, which is where the resource says that it ends.
// The library's buffer has room for all that it can say.
TEST(WineCrashes, OnAResourceThatSaysToBeLongerThanItIs) {
  std::string resource = Resource();
  resource[0] = '\xF0';
  resource[1] = '\xFF';
  GuardedMemory memory(1 << 16);
  MayCrashWine([&] {
    void* value = nullptr;
    UINT size = 0;
    VerQueryValueA(memory.Put(resource + std::string(resource.size() + 4, '\0')),
                   "\\StringFileInfo\\040904b0\\CompanyName", &value, &size);
  });
  ImageFile image("crash.sys", Resource());
  image.Rewrite(resource, image.Place(), static_cast<DWORD>(resource.size()));
  EXPECT_EQ(FileVersion(image.Path()), "6.0.0.0");
}

// GetFileVersionInfoA copies the resource from where the directory says that it is, as much as that says. The library
// looks first.
TEST(WineCrashes, OnAResourceThatLiesOutsideOfItsImage) {
  for (const bool isElsewhere : {false, true}) {
    // Wine keeps the image open on which it crashed.
    ImageFile image(isElsewhere ? "elsewhere.sys" : "large.sys", Resource());
    EXPECT_EQ(FileVersion(image.Path()), "6.0.0.0");
    const auto size = static_cast<DWORD>(image.Good().size());
    image.Rewrite(image.Good(), isElsewhere ? 0x7000000 : image.Place(), isElsewhere ? size : 0x100000);
    EXPECT_EQ(FileVersion(image.Path()), "");
    MayCrashWine([&] {
      std::vector<char> buffer(0x300000);
      GetFileVersionInfoA(image.Path().c_str(), 0, static_cast<DWORD>(buffer.size()), buffer.data());
    });
  }
}

// GetFileVersionInfoSizeA follows a directory wherever it leads. The library looks first.
TEST(WineCrashes, OnAResourceDirectoryThatLiesOutsideOfItsImage) {
  ImageFile image("crash.sys", Resource());
  std::string bytes = image.Bytes();
  // The first entry of the first level leads to the second, by an offset whose highest bit says that it is one.
  bytes[image.Entry() - 0x48 + 0x16] = '\x70';
  image.Rewrite(bytes);
  MayCrashWine([&] {
    DWORD handle = 0;
    GetFileVersionInfoSizeA(image.Path().c_str(), &handle);
  });
  EXPECT_EQ(FileVersion(image.Path()), "");
}

}  // namespace
