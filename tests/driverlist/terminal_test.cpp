// What list prints on a terminal, on a machine of one driver.
#include <gmock/gmock.h>
#include <windows.h>

#include <memory>

#include "commands/commands.h"
#include "importhook.h"
#include "platform/encoding.h"
#include "program.h"
#include "scratchmachine.h"

using testing::HasSubstr;
using testing::Not;

namespace {

/// What `arguments` of list print on a terminal of `width` columns.
std::string OnATerminal(SHORT width, const std::vector<std::string>& arguments) {
  const HMODULE program = GetModuleHandleA(nullptr);
  const auto isOutput = [](HANDLE handle) -> BOOL { return handle == GetStdHandle(STD_OUTPUT_HANDLE); };
  std::string written;
  HOOK(info, program, GetConsoleScreenBufferInfo, [&](HANDLE handle, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
    buffer->srWindow = {0, 0, static_cast<SHORT>(width - 1), 24};
    return isOutput(handle);
  });
  HOOK(get, program, GetConsoleMode, [&](HANDLE handle, DWORD*) { return isOutput(handle); });
  HOOK(set, program, SetConsoleMode, [](HANDLE, DWORD) { return TRUE; });
  HOOK(write, program, WriteConsoleW, [&](HANDLE, const void* text, DWORD length, DWORD* count, void*) -> BOOL {
    written += Orvane::Utf8FromWide({static_cast<const wchar_t*>(text), length});
    *count = length;
    return TRUE;
  });
  EXPECT_EQ(driverlist::RunList(driverlist::ParseCommandLine(arguments).options.value()), 0);
  return written;
}

class ProgramOnATerminal : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (IsSkipped()) return;
    if (test::SystemDirectory() != "C:\\windows\\system32") GTEST_SKIP() << "the folders are those of Wine";
    m_machine = std::make_unique<Machine>();
  }

 private:
  struct Machine {
    test::ScratchFile image{"C:\\windows\\system32\\drivers\\OiBus.sys", L"images\\full.sys"};
    test::DriverService service{"OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys"};
  };
  std::unique_ptr<Machine> m_machine;
};

TEST_F(ProgramOnATerminal, ColoursTheInventory) {
  EXPECT_EQ(OnATerminal(80, {"--kind", "service"}),
            "\x1B[1mkind\x1B[0m     \x1B[1mname\x1B[0m       \x1B[1mversion\x1B[0m         \x1B[1mstate\x1B[0m    "
            "\x1B[1mstart_type\x1B[0m  \x1B[1mprovider\x1B[0m\n"
            "service  OiBus.sys  6.2.9200.16384  \x1B[33mStopped\x1B[0m  Manual      Example Systems\n")
      << "services, INFs and paths have no place there";
}

TEST_F(ProgramOnATerminal, ShowsMoreOnAWideOne) {
  const test::EnvironmentVariable forbidden("NO_COLOR", "1");
  EXPECT_EQ(OnATerminal(120, {"--kind", "service"}),
            "kind     name       version         state    start_type  provider         service  inf  path\n"
            "service  OiBus.sys  6.2.9200.16384  Stopped  Manual      Example Systems  OiBus         "
            "\u2026ows\\System32\\drivers\\OiBus.sys\n");
  EXPECT_EQ(
      OnATerminal(120, {"--mode", "registered", "--where", "name=OiBus*"}),
      "name       file_version    state    start_type  provider         path\n"
      "OiBus.sys  6.2.9200.16384  Stopped  Manual      Example Systems  C:\\windows\\system32\\drivers\\OiBus.sys\n");
}

TEST_F(ProgramOnATerminal, ShowsAPathOnANarrowOneToThoseWhoAsk) {
  const test::EnvironmentVariable forbidden("NO_COLOR", "1");
  EXPECT_EQ(OnATerminal(40, {"--kind", "service", "--columns", "name,path"}),
            "name       path\n"
            "OiBus.sys  \u2026\\System32\\drivers\\OiBus.sys\n");
}

TEST_F(ProgramOnATerminal, ColoursATableOnly) {
  for (const char* const format : {"json", "jsonl", "csv", "markdown"}) {
    const std::string text = OnATerminal(40, {"--kind", "service", "--format", format});
    EXPECT_THAT(text, HasSubstr("Example Systems"));
    EXPECT_THAT(text, Not(HasSubstr("\x1B")));
  }
}

TEST_F(ProgramOnATerminal, WritesAFileAsIfThereWereNoTerminal) {
  const test::TemporaryFolder folder;
  const std::string file = Orvane::Utf8FromWide(folder.Path(L"list.txt"));
  EXPECT_EQ(OnATerminal(40, {"--kind", "service", "--output", file}), "");
  EXPECT_EQ(test::FileContent(folder.Path(L"list.txt")),
            "kind     name       version         state    start_type  provider         service  inf  path\n"
            "service  OiBus.sys  6.2.9200.16384  Stopped  Manual      Example Systems  OiBus         "
            "C:\\windows\\System32\\drivers\\OiBus.sys\n");
}

}  // namespace
