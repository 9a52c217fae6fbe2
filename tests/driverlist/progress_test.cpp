#include "terminal/progress.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <memory>

#include "codepage.h"
#include "importhook.h"
#include "inventory/inventory.h"
#include "inventory/listing.h"
#include "inventory/progress.h"
#include "log.h"
#include "platform/encoding.h"
#include "scratchmachine.h"
#include "scriptedterminal.h"

using driverlist::Progress;
using inventory::ProgressText;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(ProgressText, SaysHowFarAListingIs) {
  EXPECT_EQ(ProgressText("Start list exist device driver files."), "devices");
  EXPECT_EQ(ProgressText("8086-15FB-1028-0A5C|C:\\windows\\inf\\oem0.inf"), "device 8086-15FB-1028-0A5C");
  EXPECT_EQ(ProgressText("8086-7E4C-1028-0A5C|"), "device 8086-7E4C-1028-0A5C");
  EXPECT_EQ(ProgressText("Start to list registered driver files."), "services");
  EXPECT_EQ(ProgressText("DRIVERINFO.name=ACPI.sys DRIVERINFO.file_version=10.0"), "driver ACPI.sys");
  EXPECT_EQ(ProgressText("DRIVERINFO.name=two words.sys DRIVERINFO.file_version="), "driver two words.sys");
  EXPECT_EQ(ProgressText("Start to list driver files from OemInf."), "OEM packages");
  EXPECT_EQ(ProgressText("Start to parse C:\\windows\\inf\\oem0.inf"), "package oem0.inf");
  EXPECT_EQ(ProgressText("Start to parse oem0.inf"), "package oem0.inf");
}

TEST(ProgressText, PassesOverTheRest) {
  for (const char* const line :
       {"", "nlnet.sys|12.19.2.45|", "Get driver version: 1.0", "can not find bpname= x", "Get data from cache.",
        "Enter DriverInfoImp::GetDriveInfoFromSysFile()", "driverlist size before erase unique:13",
        "Start to list registered driver files. And more."}) {
    EXPECT_EQ(ProgressText(line), std::nullopt) << line;
  }
}

TEST(ProgressText, IsUtf8) {
  const std::string line = "DRIVERINFO.name=Ger\u00E4t.sys DRIVERINFO.file_version=";
  EXPECT_EQ(ProgressText(Orvane::AnsiFromUtf8(line)), "driver Ger\u00E4t.sys");
  const test::WesternCodePage western;
  EXPECT_EQ(ProgressText("DRIVERINFO.name=Ger\xE4t.sys DRIVERINFO.file_version="), "driver Ger\u00E4t.sys");
}

/// What the progress line would show while `act` runs.
template <typename Act>
std::vector<std::string> ProgressOf(Act act) {
  std::vector<std::string> texts;
  Orvane::SetLogLevel(4);
  Orvane::LogToFunction([&texts](int, const char*, int, const std::string& line) {
    if (const auto text = ProgressText(line)) texts.push_back(*text);
  });
  act();
  Orvane::LogToNothing();
  return texts;
}

/// Standard error is a terminal of 31 columns, of which 30 are used, and time goes as the test says.
class Terminal : public testing::Test {
 protected:
  static void Log(const std::string& line) { Orvane::Log(4, __FILE__, __LINE__).Stream() << line; }

  const HMODULE program = test::ThisProgram();
  const driverlist::ScriptedTerminal terminal{STD_ERROR_HANDLE, 31};
  unsigned long long now = 1000;

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
  EXPECT_THAT(terminal.Written(),
              ElementsAre("\rreading driver longname.sys", "\rreading driver a.sys" + std::string(7, ' '),
                          "\r" + std::string(20, ' ') + "\r"));
  Log("DRIVERINFO.name=after.sys DRIVERINFO.file_version=1");
  EXPECT_EQ(terminal.Written().size(), 3u) << "nothing once it is gone";
}

TEST_F(Terminal, ShowsTenLinesASecondAtMost) {
  const Progress progress(true);
  for (int i = 0; i < 1000; ++i) {
    Log("DRIVERINFO.name=a.sys DRIVERINFO.file_version=1");
    ++now;
  }
  EXPECT_EQ(terminal.Written().size(), 10u);
}

TEST_F(Terminal, ShowsAtOnceThatSomethingElseHasBegun) {
  Progress progress(true);
  Log("DRIVERINFO.name=a.sys DRIVERINFO.file_version=1");
  progress.Show("verifying image 0 of 2");
  progress.Show("verifying image 1 of 2");
  EXPECT_THAT(terminal.Written(), ElementsAre("\rreading driver a.sys", "\rverifying image 0 of 2"));
}

TEST_F(Terminal, IsNotWiderThanItsWindow) {
  const Progress progress(true);
  Log("DRIVERINFO.name=" + std::string(100, 'x') + "\x1B DRIVERINFO.file_version=1");
  EXPECT_THAT(terminal.Written(), ElementsAre("\rreading driver " + std::string(14, 'x') + "\u2026"));
}

TEST_F(Terminal, CountsColumnsAndShowsUnseenCharacters) {
  {
    const Progress progress(true);
    Log(Orvane::AnsiFromUtf8("DRIVERINFO.name=\u65E5\u672C.sys DRIVERINFO.file_version=1"));
    now += 100;
    Log("DRIVERINFO.name=a\x1B DRIVERINFO.file_version=1");
  }
  EXPECT_THAT(terminal.Written(), ElementsAre("\rreading driver \u65E5\u672C.sys", "\rreading driver a[U+001B]",
                                              "\r" + std::string(24, ' ') + "\r"));
}

TEST_F(Terminal, StaysEmptyWhenNobodyWantsALine) {
  {
    const Progress progress(false);
    Log("DRIVERINFO.name=a.sys DRIVERINFO.file_version=1");
  }
  { const Progress nothingToTell(true); }
  EXPECT_THAT(terminal.Written(), IsEmpty());
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
  EXPECT_THAT(terminal.Written(), IsEmpty());
  EXPECT_EQ(logged, 1) << "the log stays with whom it was";
}

/// Such a terminal, on a machine of two drivers and an OEM package.
class ProgramProgress : public Terminal {
 protected:
  void SetUp() override {
    if (test::MayChangeThisMachine()) {
      m_machine = std::make_unique<Machine>();
    } else {
      GTEST_SKIP() << "this machine is not to be changed";
    }
  }

 private:
  struct Machine {
    test::ScratchFile busImage{test::SystemDirectory() + "\\drivers\\OiBus.sys", L"images\\full.sys"};
    test::ScratchFile germanImage{test::SystemDirectory() + "\\drivers\\OiGeraet.sys", L"images\\codepage.sys"};
    test::DriverService bus{"OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys"};
    test::DriverService german{"OiGeraet", "System32\\drivers\\OiGeraet.sys"};
    test::ScratchFile package{
        test::InfDirectory() + "\\oem77.inf",
        {"[Version]", "Signature=\"$WINDOWS NT$\"", "Provider=Example Systems", "DriverVer=01/02/2020,1.2.3.4"}};
  };
  std::unique_ptr<Machine> m_machine;
};

TEST_F(ProgramProgress, KnowsTheLogOfARealListing) {
  const auto listing = [] { EXPECT_THAT(inventory::Listed(inventory::ListingMode::All), testing::Not(IsEmpty())); };
  // Wine's own display adapter comes first, without driver.
  EXPECT_THAT(ProgressOf(listing), ElementsAre("devices", "device 0000-0000-0000-0000", "services", "driver OiBus.sys",
                                               "driver OiGeraet.sys", "OEM packages", "package oem77.inf"));
}

TEST_F(ProgramProgress, IsShownWhileTheInventoryIsCollected) {
  HOOK(passing, program, GetTickCount64, [this] { return now += 100; });
  {
    const Progress progress(true);
    EXPECT_THAT(inventory::Collect({}).records, testing::Not(IsEmpty()));
  }
  std::vector<std::string> written = terminal.Written();
  ASSERT_GE(written.size(), 5u);
  written.resize(5);
  for (std::string& text : written) text.erase(text.find_last_not_of(' ') + 1);
  EXPECT_THAT(written, ElementsAre("\rreading devices", "\rreading device 0000-0000-0000\u2026", "\rreading services",
                                   "\rreading driver OiBus.sys", "\rreading driver OiGeraet.sys"));
}

}  // namespace
