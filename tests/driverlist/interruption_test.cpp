#include "terminal/interruption.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <thread>

#include "importhook.h"
#include "platform/encoding.h"
#include "scriptedterminal.h"
#include "temporaryfiles.h"
#include "terminal/colours.h"
#include "terminal/output.h"
#include "terminal/progress.h"

using namespace driverlist;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr UINT Interrupted = 0xC000013A;

/// A process that does not end when it is interrupted.
class Interruption : public testing::Test {
 protected:
  Interruption() { EndCleanlyWhenInterrupted(); }

  /// As Windows does it, but on this thread. Whether anybody answers.
  bool Press(DWORD event) const { return handler(event) != FALSE; }

  const HMODULE program = test::ThisProgram();
  PHANDLER_ROUTINE handler = nullptr;
  /// Exit codes with which it would have ended.
  std::vector<UINT> ends;

  HOOK(setHandler, program, SetConsoleCtrlHandler, [this](PHANDLER_ROUTINE routine, BOOL adds) -> BOOL {
    if (adds) handler = routine;
    return TRUE;
  });
  HOOK(end, program, TerminateProcess, [this](HANDLE process, UINT exitCode) -> BOOL {
    EXPECT_EQ(process, GetCurrentProcess());
    ends.push_back(exitCode);
    return TRUE;
  });
};

TEST_F(Interruption, EndsTheProcessWithTheUsualCode) {
  for (const DWORD event : {CTRL_C_EVENT, CTRL_BREAK_EVENT, CTRL_CLOSE_EVENT}) {
    EXPECT_TRUE(Press(event));
  }
  EXPECT_THAT(ends, ElementsAre(Interrupted, Interrupted, Interrupted));
}

TEST_F(Interruption, IsNotTheEndOfSomebodysSession) {
  EXPECT_FALSE(Press(CTRL_LOGOFF_EVENT));
  EXPECT_FALSE(Press(CTRL_SHUTDOWN_EVENT));
  EXPECT_THAT(ends, IsEmpty());
}

TEST_F(Interruption, UndoesTheLatestFirstAndNothingThatIsOver) {
  std::vector<int> undone;
  const UndoneWhenInterrupted first([&undone] { undone.push_back(1); });
  const UndoneWhenInterrupted second([&undone] { undone.push_back(2); });
  {
    const UndoneWhenInterrupted over([&undone] { undone.push_back(3); });
  }
  Press(CTRL_C_EVENT);
  EXPECT_THAT(undone, ElementsAre(2, 1));
}

TEST_F(Interruption, WaitsForWhatMustNotBeInterrupted) {
  bool isDone = false;
  bool wasDone = false;
  const UndoneWhenInterrupted undoing([&] { wasDone = isDone; });
  std::thread presses;
  {
    const Uninterrupted now;
    presses = std::thread([this] { Press(CTRL_C_EVENT); });
    Sleep(100);
    isDone = true;
    EXPECT_THAT(ends, IsEmpty());
  }
  presses.join();
  EXPECT_TRUE(wasDone);
  EXPECT_THAT(ends, ElementsAre(Interrupted));
}

TEST_F(Interruption, DoesNotWaitForEver) {
  bool isUndone = false;
  const UndoneWhenInterrupted undoing([&isUndone] { isUndone = true; });
  const Uninterrupted stuck;
  std::thread([this] { Press(CTRL_C_EVENT); }).join();
  EXPECT_FALSE(isUndone);
  EXPECT_THAT(ends, ElementsAre(Interrupted));
}

TEST_F(Interruption, ClearsTheProgressLine) {
  const ScriptedTerminal terminal(STD_ERROR_HANDLE, 31);
  Progress progress(true);
  progress.Show("verifying image 3 of 7");
  Press(CTRL_C_EVENT);
  EXPECT_THAT(terminal.Written(), ElementsAre("\rverifying image 3 of 7", "\r" + std::string(22, ' ') + "\r"));
}

TEST_F(Interruption, SwitchesColoursOff) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80);
  const Colours colours(true);
  WriteStandardOutput("\x1B[31mred");
  Press(CTRL_C_EVENT);
  EXPECT_THAT(terminal.Written(), ElementsAre("\x1B[31mred", "\x1B[0m"));
  EXPECT_THAT(terminal.Modes(), ElementsAre(7u, 3u));
}

TEST_F(Interruption, RemovesTheDraftOfAFile) {
  const test::TemporaryFolder folder;
  const std::wstring path = folder.Path(L"list.txt");
  test::WriteText(path, "old");
  bool isPressed = false;
  HOOK(flush, program, FlushFileBuffers, [&](HANDLE file) -> BOOL {
    Press(CTRL_C_EVENT);
    isPressed = true;
    return flush.Real(file);
  });
  // In earnest, the process would be gone by now.
  EXPECT_NE(WriteFileWhole(Orvane::Utf8FromWide(path), "new"), "");
  EXPECT_TRUE(isPressed);
  EXPECT_THAT(folder.Files(), ElementsAre(L"list.txt"));
  EXPECT_EQ(test::FileContent(path), "old");
}

}  // namespace
