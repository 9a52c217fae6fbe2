#include "output.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "importhook.h"
#include "program.h"
#include "unicode.h"

using namespace driverlist;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FileOutput : public testing::Test {
 protected:
  std::string Write(const std::wstring& file, const std::string& text) const {
    return WriteFileWhole(Utf8FromWide(folder.Path(file)), text);
  }
  std::string Content(const std::wstring& file) const { return test::FileContent(folder.Path(file)); }

  test::TemporaryFolder folder;
};

TEST_F(FileOutput, IsTheWholeTextByteForByte) {
  std::string text = "line\nline\r\n";
  text.resize(3'000'000, 'x');
  EXPECT_EQ(Write(L"\u0436.txt", text), "");
  EXPECT_EQ(Content(L"\u0436.txt"), text);
  EXPECT_EQ(Write(L"\u0436.txt", ""), "");
  EXPECT_EQ(Content(L"\u0436.txt"), "");
  EXPECT_THAT(folder.Files(), ElementsAre(L"\u0436.txt"));
}

TEST_F(FileOutput, LeavesTheFormerFileWhenTheDiskIsFull) {
  Write(L"file", "old");
  int writes = 0;
  HOOK(write, GetModuleHandleA(nullptr), WriteFile,
       [&](HANDLE file, const void* buffer, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
         if (++writes == 1) return write.Real(file, buffer, size / 2, written, overlapped);
         SetLastError(ERROR_DISK_FULL);
         return FALSE;
       });
  EXPECT_EQ(Write(L"file", "the new text"), ErrorText(ERROR_DISK_FULL));
  EXPECT_EQ(Content(L"file"), "old");
  EXPECT_THAT(folder.Files(), ElementsAre(L"file"));
}

TEST_F(FileOutput, LeavesTheFormerFileWhenItCannotBeReplaced) {
  Write(L"file", "old");
  HOOK(move, GetModuleHandleA(nullptr), MoveFileExW, [](const wchar_t*, const wchar_t*, DWORD) {
    SetLastError(ERROR_SHARING_VIOLATION);
    return FALSE;
  });
  EXPECT_EQ(Write(L"file", "new"), ErrorText(ERROR_SHARING_VIOLATION));
  EXPECT_EQ(Content(L"file"), "old");
  EXPECT_THAT(folder.Files(), ElementsAre(L"file"));
}

TEST_F(FileOutput, LeavesNothingWhenTheFolderIsMissing) {
  EXPECT_EQ(Write(L"no such folder\\file", "text"), ErrorText(ERROR_PATH_NOT_FOUND));
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(FileOutput, RefusesAWriteThatTakesNothing) {
  HOOK(write, GetModuleHandleA(nullptr), WriteFile, [](HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
    *written = 0;
    return TRUE;
  });
  EXPECT_NE(Write(L"file", "text"), "");
  EXPECT_THAT(folder.Files(), IsEmpty());
}

}  // namespace
