#include "terminal/output.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "importhook.h"
#include "machine.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "program.h"

using namespace driverlist;
using Orvane::ErrorText;
using Orvane::Utf8FromWide;
using Orvane::WideFromUtf8;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void WriteDirectly(const std::wstring& path, const std::string& text) {
  const Orvane::FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
  ASSERT_TRUE(file);
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
}

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

TEST_F(FileOutput, LeavesTheFormerFileWhenItCannotBeFlushed) {
  Write(L"file", "old");
  HOOK(flush, GetModuleHandleA(nullptr), FlushFileBuffers, [](HANDLE) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
  });
  EXPECT_EQ(Write(L"file", "new"), ErrorText(ERROR_DISK_FULL));
  EXPECT_EQ(Content(L"file"), "old");
  EXPECT_THAT(folder.Files(), ElementsAre(L"file"));
}

TEST_F(FileOutput, ClearsAwayDraftsOfProcessesThatEnded) {
  // No process has an odd number.
  WriteDirectly(folder.Path(L"file.driverlist-1.tmp"), "half");
  const std::wstring ours = L"file.driverlist-" + std::to_wstring(GetCurrentProcessId()) + L".tmp";
  WriteDirectly(folder.Path(ours), "half");
  for (const wchar_t* const other : {L"file.driverlist-x.tmp", L"file.driverlist-1x.tmp", L"file.driverlist-.tmp",
                                     L"file.1.tmp", L"other.driverlist-1.tmp"}) {
    WriteDirectly(folder.Path(other), "not ours");
  }
  EXPECT_EQ(Write(L"file", "new"), "");
  EXPECT_EQ(Content(L"file"), "new");
  EXPECT_THAT(folder.Files(),
              testing::UnorderedElementsAre(L"file", L"file.driverlist-x.tmp", L"file.driverlist-1x.tmp",
                                            L"file.driverlist-.tmp", L"file.1.tmp", L"other.driverlist-1.tmp"));
}

TEST_F(FileOutput, LeavesTheDraftsOfProcessesThatRun) {
  PROCESS_INFORMATION process{};
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  std::wstring program = test::ProgramDirectory() + L"\\driverlist.exe --version";
  ASSERT_TRUE(CreateProcessW(nullptr, program.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                             &start, &process));
  const std::wstring draft = L"file.driverlist-" + std::to_wstring(process.dwProcessId) + L".tmp";
  WriteDirectly(folder.Path(draft), "half");
  EXPECT_EQ(Write(L"file", "new"), "");
  EXPECT_THAT(folder.Files(), testing::UnorderedElementsAre(L"file", draft));

  TerminateProcess(process.hProcess, 1);
  WaitForSingleObject(process.hProcess, INFINITE);
  EXPECT_EQ(Write(L"file", "newer"), "");
  EXPECT_THAT(folder.Files(), ElementsAre(L"file")) << "also while someone still holds the process";
  CloseHandle(process.hProcess);
  CloseHandle(process.hThread);
}

TEST_F(FileOutput, GoesToADeviceAsItIs) { EXPECT_EQ(WriteFileWhole("NUL", "text"), ""); }

TEST(ConsoleOutput, IsWrittenInUtf16WithoutCuttingACharacter) {
  std::vector<std::wstring> written;
  HOOK(mode, GetModuleHandleA(nullptr), GetConsoleMode,
       [](HANDLE handle, DWORD*) -> BOOL { return handle == GetStdHandle(STD_OUTPUT_HANDLE); });
  HOOK(write, GetModuleHandleA(nullptr), WriteConsoleW,
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
  HOOK(mode, GetModuleHandleA(nullptr), GetConsoleMode, [](HANDLE, DWORD*) { return TRUE; });
  HOOK(write, GetModuleHandleA(nullptr), WriteConsoleW, [](HANDLE, const void*, DWORD, DWORD*, void*) -> BOOL {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  });
  EXPECT_EQ(WriteStandardOutput("text"), ErrorText(ERROR_INVALID_HANDLE));
}

TEST(ConsoleOutput, IsOneColumnNarrowerThanItsWindow) {
  SMALL_RECT window = {5, 0, 84, 24};
  HOOK(info, GetModuleHandleA(nullptr), GetConsoleScreenBufferInfo,
       [&](HANDLE, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
         buffer->dwSize = {300, 9999};
         buffer->srWindow = window;
         return TRUE;
       });
  EXPECT_EQ(TerminalWidth(), 79u);
  window = {0, 0, 0, 0};
  EXPECT_EQ(TerminalWidth(), 1u) << "a window of one column";
}

TEST(ConsoleOutput, HasAWidthOfItsOwnForErrors) {
  HOOK(info, GetModuleHandleA(nullptr), GetConsoleScreenBufferInfo,
       [](HANDLE handle, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
         buffer->srWindow = {0, 0, 99, 24};
         return handle == GetStdHandle(STD_ERROR_HANDLE);
       });
  EXPECT_EQ(StandardErrorWidth(), 99u);
  EXPECT_EQ(TerminalWidth(), 0u);
}

TEST(ConsoleOutput, HasNoWidthWithoutConsole) {
  HOOK(info, GetModuleHandleA(nullptr), GetConsoleScreenBufferInfo,
       [](HANDLE, CONSOLE_SCREEN_BUFFER_INFO*) { return FALSE; });
  EXPECT_EQ(TerminalWidth(), 0u);
}

}  // namespace
