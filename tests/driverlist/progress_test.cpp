#include "progress.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "importhook.h"
#include "log.h"
#include "unicode.h"

using driverlist::Progress;
using driverlist::ProgressText;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(ProgressText, TellsTheWayOfAListing) {
  EXPECT_EQ(ProgressText("Start list exist device driver files."), "devices");
  EXPECT_EQ(ProgressText("8086-15FB-1028-0A5C|C:\\windows\\inf\\oem0.inf"), "device 8086-15FB-1028-0A5C");
  EXPECT_EQ(ProgressText("8086-7E4C-1028-0A5C|"), "device 8086-7E4C-1028-0A5C");
  EXPECT_EQ(ProgressText("Start to list registered driver files."), "services");
  EXPECT_EQ(ProgressText("DRIVERINFO.name=ACPI.sys DRIVERINFO.file_version=10.0"), "driver ACPI.sys");
  EXPECT_EQ(ProgressText("Start to list driver files from OemInf."), "OEM packages");
  EXPECT_EQ(ProgressText("Start to parse C:\\windows\\inf\\oem0.inf"), "package oem0.inf");
  EXPECT_EQ(ProgressText("Start to parse oem0.inf"), "package oem0.inf");
}

TEST(ProgressText, PassesOverTheRest) {
  for (const char* const line :
       {"", "nlnet.sys|12.19.2.45|", "Get driver version: 1.0", "can not find bpname= x", "Get data from cache.",
        "Enter DriverInfoImp::GetDriveInfoFromSysFile()", "driverlist size before erase unique:13"}) {
    EXPECT_EQ(ProgressText(line), std::nullopt) << line;
  }
}

TEST(ProgressText, IsUtf8) {
  if (GetACP() != 1252) GTEST_SKIP() << "the bytes are those of code page 1252";
  EXPECT_EQ(ProgressText("DRIVERINFO.name=Ger\xE4t.sys DRIVERINFO.file_version="), "driver Ger\u00E4t.sys");
}

/// Standard error is a terminal of 31 columns, of which 30 are used, and time goes as the test says.
class Terminal : public testing::Test {
 protected:
  static bool IsError(HANDLE handle) { return handle == GetStdHandle(STD_ERROR_HANDLE); }
  static void Log(const std::string& line) { Orvane::Log(4, __FILE__, __LINE__).Stream() << line; }

  const HMODULE program = GetModuleHandleA(nullptr);
  std::vector<std::string> written;
  unsigned long long now = 1000;

  HOOK(info, program, GetConsoleScreenBufferInfo, [](HANDLE handle, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
    buffer->srWindow = {0, 0, 30, 24};
    return IsError(handle);
  });
  HOOK(mode, program, GetConsoleMode, [](HANDLE handle, DWORD*) -> BOOL { return IsError(handle); });
  HOOK(write, program, WriteConsoleW, [this](HANDLE, const void* text, DWORD length, DWORD* count, void*) -> BOOL {
    written.push_back(driverlist::Utf8FromWide({static_cast<const wchar_t*>(text), length}));
    *count = length;
    return TRUE;
  });
  HOOK(time, program, GetTickCount64, [this] { return now; });
};

TEST_F(Terminal, ShowsOneLineThatIsGoneInTheEnd) {
  {
    const Progress progress(true);
    Log("DRIVERINFO.name=longname.sys DRIVERINFO.file_version=1");
    now += 100;
    Log("Get driver version: 1.0");
    Log("DRIVERINFO.name=a.sys DRIVERINFO.file_version=1");
  }
  EXPECT_THAT(written, ElementsAre("\rreading driver longname.sys", "\rreading driver a.sys" + std::string(7, ' '),
                                   "\r" + std::string(20, ' ') + "\r"));
  Log("DRIVERINFO.name=after.sys DRIVERINFO.file_version=1");
  EXPECT_EQ(written.size(), 3u) << "nothing once it is gone";
}

TEST_F(Terminal, ShowsTenLinesASecondAtMost) {
  const Progress progress(true);
  for (int i = 0; i < 1000; ++i) {
    Log("DRIVERINFO.name=a.sys DRIVERINFO.file_version=1");
    ++now;
  }
  EXPECT_EQ(written.size(), 10u);
}

TEST_F(Terminal, IsNotWiderThanItsWindow) {
  const Progress progress(true);
  Log("DRIVERINFO.name=" + std::string(100, 'x') + "\x1B DRIVERINFO.file_version=1");
  EXPECT_THAT(written, ElementsAre("\rreading driver " + std::string(14, 'x') + "\u2026"));
}

TEST_F(Terminal, StaysEmptyWhenNobodyWantsALine) {
  {
    const Progress progress(false);
    Log("DRIVERINFO.name=a.sys DRIVERINFO.file_version=1");
  }
  { const Progress nothingToTell(true); }
  EXPECT_THAT(written, IsEmpty());
}

TEST_F(Terminal, IsNoFile) {
  HOOK(noConsole, program, GetConsoleScreenBufferInfo, [](HANDLE, CONSOLE_SCREEN_BUFFER_INFO*) { return FALSE; });
  int logged = 0;
  Orvane::LogToFunction([&](int, const char*, int, const std::string&) { ++logged; });
  {
    const Progress progress(true);
    Log("DRIVERINFO.name=a.sys DRIVERINFO.file_version=1");
  }
  Orvane::LogToNothing();
  EXPECT_THAT(written, IsEmpty());
  EXPECT_EQ(logged, 1) << "the log stays with whom it was";
}

}  // namespace
