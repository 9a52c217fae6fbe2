#include "terminal/output.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "importhook.h"
#include "machine.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "temporaryfiles.h"

using namespace driverlist;
using Orvane::ErrorText;
using Orvane::Utf8FromWide;
using Orvane::WideFromUtf8;
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
  HOOK(write, test::ThisProgram(), WriteFile,
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
  HOOK(move, test::ThisProgram(), MoveFileExW, [](const wchar_t*, const wchar_t*, DWORD) {
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
  HOOK(write, test::ThisProgram(), WriteFile, [](HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
    *written = 0;
    return TRUE;
  });
  EXPECT_NE(Write(L"file", "text"), "");
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(FileOutput, LeavesTheFormerFileWhenItCannotBeFlushed) {
  Write(L"file", "old");
  HOOK(flush, test::ThisProgram(), FlushFileBuffers, [](HANDLE) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
  });
  EXPECT_EQ(Write(L"file", "new"), ErrorText(ERROR_DISK_FULL));
  EXPECT_EQ(Content(L"file"), "old");
  EXPECT_THAT(folder.Files(), ElementsAre(L"file"));
}

TEST_F(FileOutput, LeavesTheFormerFileWhenItCannotBeClosed) {
  Write(L"file", "old");
  HANDLE draft = nullptr;
  HOOK(flush, GetModuleHandleA(nullptr), FlushFileBuffers, [&](HANDLE file) {
    draft = file;
    return flush.Real(file);
  });
  HOOK(close, GetModuleHandleA(nullptr), CloseHandle, [&](HANDLE handle) -> BOOL {
    const BOOL isClosed = close.Real(handle);
    if (handle != draft) return isClosed;
    draft = nullptr;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
  });
  EXPECT_EQ(Write(L"file", "new"), ErrorText(ERROR_DISK_FULL));
  EXPECT_EQ(Content(L"file"), "old");
  EXPECT_THAT(folder.Files(), ElementsAre(L"file"));
}

TEST_F(FileOutput, LeavesTheDraftsOfProcessesThatItMayNotAskAbout) {
  test::WriteText(folder.Path(L"file.driverlist-1.tmp"), "half");
  HOOK(open, GetModuleHandleA(nullptr), OpenProcess, [](DWORD, BOOL, DWORD) -> HANDLE {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  });
  EXPECT_EQ(Write(L"file", "new"), "");
  EXPECT_THAT(folder.Files(), testing::UnorderedElementsAre(L"file", L"file.driverlist-1.tmp"));
}

TEST_F(FileOutput, ClearsAwayDraftsOfProcessesThatEnded) {
  // No process has an odd number.
  test::WriteText(folder.Path(L"file.driverlist-1.tmp"), "half");
  const std::wstring ours = L"file.driverlist-" + std::to_wstring(GetCurrentProcessId()) + L".tmp";
  test::WriteText(folder.Path(ours), "half");
  for (const wchar_t* const other : {L"file.driverlist-x.tmp", L"file.driverlist-1x.tmp", L"file.driverlist-.tmp",
                                     L"file.1.tmp", L"other.driverlist-1.tmp"}) {
    test::WriteText(folder.Path(other), "not ours");
  }
  EXPECT_EQ(Write(L"file", "new"), "");
  EXPECT_EQ(Content(L"file"), "new");
  EXPECT_THAT(folder.Files(),
              testing::UnorderedElementsAre(L"file", L"file.driverlist-x.tmp", L"file.driverlist-1x.tmp",
                                            L"file.driverlist-.tmp", L"file.1.tmp", L"other.driverlist-1.tmp"));
}

TEST_F(FileOutput, LeavesTheDraftsOfProcessesThatRun) {
  PROCESS_INFORMATION started{};
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  std::wstring program = test::ProgramDirectory() + L"\\driverlist.exe --version";
  ASSERT_TRUE(CreateProcessW(nullptr, program.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                             &start, &started));
  const Orvane::ProcessHandle process(started.hProcess);
  const Orvane::ProcessHandle thread(started.hThread);
  const std::wstring draft = L"file.driverlist-" + std::to_wstring(started.dwProcessId) + L".tmp";
  test::WriteText(folder.Path(draft), "half");
  EXPECT_EQ(Write(L"file", "new"), "");
  EXPECT_THAT(folder.Files(), testing::UnorderedElementsAre(L"file", draft));

  TerminateProcess(process.get(), 1);
  WaitForSingleObject(process.get(), INFINITE);
  EXPECT_EQ(Write(L"file", "newer"), "");
  EXPECT_THAT(folder.Files(), ElementsAre(L"file")) << "also while someone still holds the process";
}

TEST_F(FileOutput, GoesToADeviceAsItIs) { EXPECT_EQ(WriteFileWhole("NUL", "text"), ""); }

TEST(ConsoleOutput, IsWrittenInUtf16WithoutCuttingACharacter) {
  std::vector<std::wstring> written;
  HOOK(mode, test::ThisProgram(), GetConsoleMode,
       [](HANDLE handle, DWORD*) -> BOOL { return handle == GetStdHandle(STD_OUTPUT_HANDLE); });
  HOOK(write, test::ThisProgram(), WriteConsoleW,
       [&](HANDLE, const void* text, DWORD length, DWORD* count, void*) -> BOOL {
         written.emplace_back(static_cast<const wchar_t*>(text), length);
         *count = length;
         return TRUE;
       });
  const std::string rest = std::string(8190, 'x') + "\U0001F680" + std::string(20000, 'y');
  EXPECT_EQ(WriteStandardOutput("\u4E2D" + rest), "");
  EXPECT_THAT(written, ElementsAre(WideFromUtf8("\u4E2D" + std::string(8190, 'x')),
                                   WideFromUtf8("\U0001F680" + std::string(8190, 'y')), std::wstring(8192, L'y'),
                                   std::wstring(3618, L'y')));
}

TEST(ConsoleOutput, TellsWhatWentWrong) {
  HOOK(mode, test::ThisProgram(), GetConsoleMode, [](HANDLE, DWORD*) { return TRUE; });
  HOOK(write, test::ThisProgram(), WriteConsoleW, [](HANDLE, const void*, DWORD, DWORD*, void*) -> BOOL {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  });
  EXPECT_EQ(WriteStandardOutput("text"), ErrorText(ERROR_INVALID_HANDLE));
}

TEST(ConsoleOutput, IsOneColumnNarrowerThanItsWindow) {
  SMALL_RECT window = {5, 0, 84, 24};
  HOOK(info, test::ThisProgram(), GetConsoleScreenBufferInfo, [&](HANDLE, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
    buffer->dwSize = {300, 9999};
    buffer->srWindow = window;
    return TRUE;
  });
  EXPECT_EQ(TerminalWidth(), 79u);
  window = {0, 0, 0, 0};
  EXPECT_EQ(TerminalWidth(), 1u) << "a window of one column";
}

TEST(ConsoleOutput, HasAWidthOfItsOwnForErrors) {
  HOOK(info, test::ThisProgram(), GetConsoleScreenBufferInfo,
       [](HANDLE handle, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
         buffer->srWindow = {0, 0, 99, 24};
         return handle == GetStdHandle(STD_ERROR_HANDLE);
       });
  EXPECT_EQ(StandardErrorWidth(), 99u);
  EXPECT_EQ(TerminalWidth(), 0u);
}

TEST(ConsoleOutput, HasNoWidthWithoutConsole) {
  HOOK(info, test::ThisProgram(), GetConsoleScreenBufferInfo,
       [](HANDLE, CONSOLE_SCREEN_BUFFER_INFO*) { return FALSE; });
  EXPECT_EQ(TerminalWidth(), 0u);
}

}  // namespace
