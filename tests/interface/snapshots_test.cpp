// Snapshots that are opened, read and compared.
#include <windows.h>

#include <fstream>

#include "machine.h"

using testing::HasSubstr;

namespace {

std::string Utf8(const std::wstring& wide) {
  std::string text(wide.size() * 3, '\0');
  const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                                       static_cast<int>(text.size()), nullptr, nullptr);
  text.resize(static_cast<std::size_t>(size));
  return text;
}

TEST(Snapshots, AreOpenedByPathsInAnyScript) {
  const test::TemporaryFolder folder;
  const std::wstring path = folder.Path(L"\u97F3\u0436.json");
  {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, test::SmallSnapshot.data(), static_cast<DWORD>(test::SmallSnapshot.size()), &written, nullptr);
    CloseHandle(file);
  }
  driverinventory* inventory = nullptr;
  ASSERT_EQ(driverinventory_open(Utf8(path).c_str(), &inventory), DRIVERINVENTORY_OK) << driverinventory_error();
  const test::Handle owner(inventory);
  EXPECT_EQ(test::Document(inventory, DRIVERINVENTORY_SNAPSHOT),
            test::Document(test::Read(test::SmallSnapshot).get(), DRIVERINVENTORY_SNAPSHOT));
}

TEST(Snapshots, ComeBackAsTheyWereWritten) {
  const std::string written = test::Document(test::Read(test::SmallSnapshot).get(), DRIVERINVENTORY_SNAPSHOT);
  EXPECT_EQ(test::Document(test::Read(written).get(), DRIVERINVENTORY_SNAPSHOT), written);
}

TEST(Snapshots, ThatNameTheirSchemaLastAreReadTwice) {
  const test::Handle inventory =
      test::Read(R"({"drivers":[{"kind":"service","service":"a"}],"kind":"driverlist snapshot","schema_version":2})");
  std::size_t count = 0;
  EXPECT_EQ(driverinventory_count(inventory.get(), &count), DRIVERINVENTORY_OK);
  EXPECT_EQ(count, 1u);
}

TEST(Snapshots, ThatAreNoneAreRefusedInASentence) {
  driverinventory* inventory = reinterpret_cast<driverinventory*>(1);
  EXPECT_EQ(driverinventory_open("Z:\\no\\such\\file.json", &inventory), DRIVERINVENTORY_E_INPUT);
  EXPECT_EQ(inventory, nullptr);
  EXPECT_THAT(driverinventory_error(), testing::StartsWith("Z:\\no\\such\\file.json cannot be read: "));
  const std::string half = test::SmallSnapshot.substr(0, test::SmallSnapshot.size() / 2);
  EXPECT_EQ(driverinventory_read(half.data(), half.size(), &inventory), DRIVERINVENTORY_E_INPUT);
  EXPECT_THAT(driverinventory_error(), testing::StartsWith("The text is damaged: "));
  EXPECT_EQ(driverinventory_read("{}", 2, &inventory), DRIVERINVENTORY_E_INPUT);
  EXPECT_STREQ(driverinventory_error(), "The text is not a snapshot of driverlist.");
  EXPECT_EQ(driverinventory_read("", 0, &inventory), DRIVERINVENTORY_E_INPUT);
}

TEST(Snapshots, AreComparedAsTheProgramDoes) {
  std::string later = test::SmallSnapshot;
  later.replace(later.find("\"version\": \"1.0\""), 16, "\"version\": \"1.1\"");
  const test::TemporaryFolder folder;
  std::ofstream(folder.Path(L"old.json").c_str(), std::ios::binary) << test::SmallSnapshot;
  std::ofstream(folder.Path(L"new.json").c_str(), std::ios::binary) << later;
  char* text = nullptr;
  std::size_t length = 0;
  const test::Handle before = test::Read(test::SmallSnapshot);
  const test::Handle after = test::Read(later);
  ASSERT_EQ(driverinventory_compare(before.get(), after.get(), &text, &length), DRIVERINVENTORY_OK);
  const std::string differences = test::Taken(text, length);
  EXPECT_THAT(differences, HasSubstr("\"upgraded\": 1"));
  const test::ProgramResult program =
      test::RunProgram("driverlist.exe", L"diff --format json \"" + folder.Path(L"old.json") + L"\" \"" +
                                             folder.Path(L"new.json") + L"\"");
  EXPECT_EQ(test::WithoutTimes(differences), test::WithoutTimes(program.output));
}

}  // namespace
