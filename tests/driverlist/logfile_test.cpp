#include "terminal/logfile.h"

#include <gmock/gmock.h>

#include "importhook.h"
#include "log.h"
#include "platform/encoding.h"
#include "temporaryfiles.h"

using driverlist::LogFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;

namespace {

class LogFileTest : public testing::Test {
 protected:
  void SetUp() override { Orvane::SetLogLevel(4); }

  std::string Path(const std::wstring& file) const { return Orvane::Utf8FromWide(folder.Path(file)); }
  std::string Content(const std::wstring& file) const { return test::FileContent(folder.Path(file)); }
  static void Log(int level, const std::string& text) {
    Orvane::Log(level, "some/where/file.cpp", 17).Stream() << text;
  }

  test::TemporaryFolder folder;
};

TEST_F(LogFileTest, HasALineOfTimeLevelAndPlaceForEachText) {
  {
    const LogFile log(Path(L"\u0436.log"));
    Log(1, "wrong");
    Log(2, "strange\r\n");
    Log(3, "two\r\nlines");
    Log(4, Orvane::AnsiFromUtf8("Ger\u00E4t"));
    EXPECT_EQ(log.Problem(), "");
  }
  Log(1, "after it");
  const std::string time = "\\[\\d\\d\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d\\] ";
  EXPECT_THAT(Content(L"\u0436.log"), MatchesRegex(time + "\\[error\\] \\[file\\.cpp:17\\] wrong\r\n" +  //
                                                   time + "\\[warning\\] \\[file\\.cpp:17\\] strange\r\n" + time +
                                                   "\\[info\\] \\[file\\.cpp:17\\] two  lines\r\n" + time +
                                                   "\\[debug\\] \\[file\\.cpp:17\\] Ger\u00E4t\r\n"));
}

TEST_F(LogFileTest, LooksLikeThatOfTheLogItself) {
  Orvane::LogToFile(folder.Path(L"log"), 1 << 20, 1);
  Log(2, "text");
  Orvane::LogToNothing();
  {
    const LogFile log(Path(L"ours"));
    Log(2, "text");
  }
  const std::size_t time = std::string("[2024-05-06 07:08:09.123]").size();
  EXPECT_EQ(Content(L"ours").substr(time), Content(L"log").substr(time));
  EXPECT_EQ(Content(L"ours").size(), Content(L"log").size());
}

TEST_F(LogFileTest, GoesOnWithAFormerFile) {
  test::WriteText(folder.Path(L"log"), "former\r\n");
  {
    const LogFile log(Path(L"log"));
    Log(1, "new");
  }
  EXPECT_THAT(Content(L"log"), MatchesRegex("former\r\n\\[.+\\] new\r\n"));
}

TEST_F(LogFileTest, MakesNoFolders) {
  const LogFile log(Path(L"none\\log"));
  Log(1, "lost");
  EXPECT_EQ(log.Problem(), Orvane::ErrorText(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(GetFileAttributesW(folder.Path(L"none").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(LogFileTest, RemembersThatTheDiskWasFullAndWritesNoMore) {
  const LogFile log(Path(L"log"));
  Log(1, "first");
  {
    HOOK(write, test::ThisProgram(), WriteFile, [](HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*) {
      SetLastError(ERROR_DISK_FULL);
      return FALSE;
    });
    Log(1, "lost");
  }
  EXPECT_EQ(log.Problem(), Orvane::ErrorText(ERROR_DISK_FULL));
  Log(1, "late");
  EXPECT_THAT(Content(L"log"), MatchesRegex("\\[.+\\] first\r\n"));
}

TEST_F(LogFileTest, TakesHalfALineForAFullDisk) {
  const LogFile log(Path(L"log"));
  HOOK(write, test::ThisProgram(), WriteFile,
       [&](HANDLE file, const void* buffer, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
         return write.Real(file, buffer, size / 2, written, overlapped);
       });
  Log(1, "text");
  EXPECT_EQ(log.Problem(), Orvane::ErrorText(ERROR_DISK_FULL));
}

TEST_F(LogFileTest, KeepsThreeFormerFilesOfTenMebibytes) {
  for (const auto& [file, content] :
       {std::pair(L"a.b.log", std::string(LogFile::MaxBytes, 'x')), std::pair(L"a.b.1.log", std::string("1")),
        std::pair(L"a.b.2.log", std::string("2")), std::pair(L"a.b.3.log", std::string("3"))}) {
    test::WriteText(folder.Path(file), content);
  }
  {
    const LogFile log(Path(L"a.b.log"));
    Log(1, "new");
    EXPECT_EQ(log.Problem(), "");
  }
  EXPECT_THAT(Content(L"a.b.log"), MatchesRegex("\\[.+\\] new\r\n"));
  EXPECT_EQ(Content(L"a.b.1.log").size(), LogFile::MaxBytes);
  EXPECT_EQ(Content(L"a.b.2.log"), "1");
  EXPECT_EQ(Content(L"a.b.3.log"), "2");
  EXPECT_THAT(folder.Files(), UnorderedElementsAre(L"a.b.log", L"a.b.1.log", L"a.b.2.log", L"a.b.3.log"));
}

TEST_F(LogFileTest, IsRenamedWhenItGrowsPastItsLimitInOneRun) {
  test::WriteText(folder.Path(L"a.log"), std::string(LogFile::MaxBytes - 1000, 'x'));
  {
    const LogFile log(Path(L"a.log"));
    for (int i = 0; i < 3; ++i) Log(1, std::string(400, 'n'));
    EXPECT_EQ(log.Problem(), "");
  }
  EXPECT_THAT(folder.Files(), UnorderedElementsAre(L"a.log", L"a.1.log"));
  EXPECT_THAT(Content(L"a.log"), MatchesRegex("\\[.+\\] n+\r\n")) << "the third line";
}

TEST_F(LogFileTest, TakesANameThatBeginsWithItsOnlyDotForOneWithoutExtension) {
  test::WriteText(folder.Path(L".log"), std::string(LogFile::MaxBytes, 'x'));
  {
    const LogFile log(Path(L".log"));
    Log(1, "new");
  }
  EXPECT_THAT(folder.Files(), UnorderedElementsAre(L".log", L".log.1"));
}

TEST_F(LogFileTest, NumbersFilesWithoutExtension) {
  test::WriteText(folder.Path(L"log"), std::string(LogFile::MaxBytes, 'x'));
  {
    const LogFile log(Path(L"log"));
    Log(1, "new");
  }
  EXPECT_THAT(folder.Files(), UnorderedElementsAre(L"log", L"log.1"));
}

TEST_F(LogFileTest, RemembersThatAFormerFileCouldNotBeRenamed) {
  test::WriteText(folder.Path(L"log"), std::string(LogFile::MaxBytes, 'x'));
  const LogFile log(Path(L"log"));
  HOOK(move, test::ThisProgram(), MoveFileExW, [](const wchar_t*, const wchar_t*, DWORD) {
    SetLastError(ERROR_SHARING_VIOLATION);
    return FALSE;
  });
  Log(1, "lost");
  EXPECT_EQ(log.Problem(), Orvane::ErrorText(ERROR_SHARING_VIOLATION));
  EXPECT_THAT(folder.Files(), ElementsAre(L"log"));
  EXPECT_EQ(Content(L"log").size(), LogFile::MaxBytes);
}

}  // namespace
