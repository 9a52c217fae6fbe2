#include "input.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "importhook.h"
#include "output.h"
#include "program.h"
#include "unicode.h"

using namespace driverlist;

namespace {

TEST(FileInput, IsTheWholeFile) {
  const test::TemporaryFolder folder;
  const std::string path = Utf8FromWide(folder.Path(L"\u0436.json"));
  std::string content(3'000'000, 'x');
  content += std::string("\0\r\n\x1A", 4);
  ASSERT_EQ(WriteFileWhole(path, content), "");
  std::string text = "former";
  EXPECT_EQ(ReadFileWhole(path, text), "");
  EXPECT_TRUE(text == content);
}

TEST(FileInput, TellsWhatWentWrong) {
  const test::TemporaryFolder folder;
  std::string text;
  EXPECT_EQ(ReadFileWhole(Utf8FromWide(folder.Path(L"none")), text), ErrorText(ERROR_FILE_NOT_FOUND));
  const std::string path = Utf8FromWide(folder.Path(L"file"));
  WriteFileWhole(path, "text");
  HOOK(read, GetModuleHandleA(nullptr), ReadFile, [](HANDLE, void*, DWORD, DWORD*, OVERLAPPED*) -> BOOL {
    SetLastError(ERROR_READ_FAULT);
    return FALSE;
  });
  EXPECT_EQ(ReadFileWhole(path, text), ErrorText(ERROR_READ_FAULT));
}

}  // namespace
