// The OEM packages of the inf directory, which only the combined listing lists.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "importhook.h"
#include "listings.h"
#include "platform/handles.h"

using namespace test;
using Orvane::All;
using Orvane::DriverData;
using Orvane::FindHandle;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class OemCatalogue : public Listing {
 protected:
  std::string InfPath(const std::string& file) { return InfDirectory() + "\\" + file; }

  /// The packages that the listing reads, in order.
  std::vector<std::string> ReadPackages() {
    log.Take();
    List(All);
    std::vector<std::string> packages;
    for (const LogLine& line : log.Take()) {
      if (line.text.rfind("Start to parse ", 0) == 0) packages.push_back(line.text.substr(15));
    }
    return packages;
  }

  void SetUp() override {
    Listing::SetUp();
    SetDevices({});
  }
};

TEST_F(OemCatalogue, HoldsThePackagesThatWindowsNamedSo) {
  const ScratchFile first(InfPath("oem0.inf"), PackageLines({"a.sys"}));
  const ScratchFile second(InfPath("OEM1.INF"), PackageLines({"b.sys"}));
  const ScratchFile none1(InfPath("oem2.pnf"), PackageLines({"c.sys"}));
  const ScratchFile none2(InfPath("machine9.inf"), PackageLines({"d.sys"}));
  const ScratchFile none3(InfPath("xoem1.inf"), PackageLines({"e.sys"}));
  const ScratchFile none4(InfPath("oem.txt"), PackageLines({"f.sys"}));
  EXPECT_THAT(ReadPackages(), UnorderedElementsAre(InfPath("oem0.inf"), InfPath("OEM1.INF")));
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("a.sys", 0), PackageRecord("b.sys", 0)));
}

TEST_F(OemCatalogue, IsReadInTheOrderOfTheDirectory) {
  std::vector<std::unique_ptr<ScratchFile>> files;
  for (const int i : {5, 3, 11, 1}) {
    files.push_back(
        std::make_unique<ScratchFile>(InfPath("oem" + std::to_string(i) + ".inf"), PackageLines({"a.sys"})));
  }
  std::vector<std::string> inOrder;
  WIN32_FIND_DATAA file;
  const FindHandle found(FindFirstFileA(InfPath("oem*.inf").c_str(), &file));
  ASSERT_TRUE(found);
  do {
    inOrder.push_back(InfPath(file.cFileName));
  } while (FindNextFileA(found.get(), &file));
  EXPECT_EQ(ReadPackages(), inOrder);
}

TEST_F(OemCatalogue, IsReadAfreshOnEveryCall) {
  const ScratchFile first(InfPath("oem0.inf"), PackageLines({"a.sys"}));
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("a.sys", 0)));
  log.Take();
  const ScratchFile second(InfPath("oem1.inf"), PackageLines({"b.sys"}));
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("a.sys", 0), PackageRecord("b.sys", 0)));
  const std::vector<LogLine> lines = log.Take();
  EXPECT_THAT(lines, testing::Contains(StartOem));
  EXPECT_THAT(lines, testing::Not(testing::Contains(FromCache)));
}

TEST_F(OemCatalogue, GoesOnBehindAPackageThatCannotBeRead) {
  const ScratchFile bad(InfPath("oem0.inf"), std::vector<std::string>{"no package"});
  const ScratchFile good(InfPath("oem1.inf"), PackageLines({"b.sys"}));
  CreateDirectoryA(InfPath("oem2.inf").c_str(), nullptr);
  EXPECT_THAT(List(All), ElementsAre(PackageRecord("b.sys", 0)));
  RemoveDirectoryA(InfPath("oem2.inf").c_str());
}

TEST_F(OemCatalogue, LooksIntoNoFolder) {
  const ScratchFile inFolder(InfPath("folder\\oem0.inf"), PackageLines({"a.sys"}));
  EXPECT_THAT(ReadPackages(), IsEmpty());
}

TEST_F(OemCatalogue, IsEmptyWithoutDirectory) {
  const ScratchFile file(InfPath("oem0.inf"), PackageLines({"a.sys"}));
  {
    HOOK(windows, Library(), GetSystemWindowsDirectoryA, [](char* buffer, UINT size) -> UINT {
      EXPECT_EQ(size, 256u);
      lstrcpyA(buffer, "C:\\no such folder");
      return 17;
    });
    EXPECT_THAT(List(All), IsEmpty());
  }
  HOOK(windows, Library(), GetSystemWindowsDirectoryA, [](char*, UINT) { return UINT{0}; });
  EXPECT_THAT(List(All), IsEmpty());
  EXPECT_THAT(log.Take(), testing::Contains(StartOem).Times(2));
}

/// The walk through a directory takes its own memory, and reports in words of its own that there is no more.
TEST_F(OemCatalogue, ReportsThatMemoryRanOutInTheDirectory) {
  const ScratchFile file(InfPath("oem0.inf"), PackageLines({"a.sys"}));
  HOOK(allocate, Library(), calloc, [](std::size_t, std::size_t) -> void* { return nullptr; });
  std::vector<DriverData> drivers;
  EXPECT_THROW(info.list_drivers(drivers, All), std::bad_alloc);
}

TEST_F(OemCatalogue, EndsItsDirectoryWithTheBuffer) {
  HOOK(windows, Library(), GetSystemWindowsDirectoryA, [](char* buffer, UINT size) -> UINT {
    std::fill(buffer, buffer + size, 'w');
    return 300;
  });
  EXPECT_THAT(List(All), IsEmpty());
}

}  // namespace
