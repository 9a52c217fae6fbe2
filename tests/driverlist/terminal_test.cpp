// What list prints on a terminal, on a machine of one driver.
#include <gmock/gmock.h>
#include <windows.h>

#include <memory>

#include "commands/commands.h"
#include "logcapture.h"
#include "platform/encoding.h"
#include "scratchmachine.h"
#include "scriptedterminal.h"
#include "temporaryfiles.h"
#include "terminal/logfile.h"

using testing::HasSubstr;
using testing::Not;

namespace {

using driverlist::Codes;

/// What `arguments` of list print on a terminal of `width` columns.
std::string OnATerminal(SHORT width, const std::vector<std::string>& arguments, Codes codes = Codes::Understood) {
  const driverlist::ScriptedTerminal terminal(STD_OUTPUT_HANDLE, width, codes);
  EXPECT_EQ(driverlist::RunList(driverlist::ParseCommandLine(arguments).options.value()), 0);
  return terminal.Text();
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
            "\x1B[1mstart_type\x1B[0m  \x1B[1mprovider\x1B[0m       \x1B[1mservice\x1B[0m\n"
            "service  OiBus.sys  6.2.9200.16384  \x1B[33mStopped\x1B[0m  Manual      Example Syst\u2026  OiBus\n"
            "\n"
            "There is no room for inf and path; --columns shows them.\n");
}

TEST_F(ProgramOnATerminal, HasNoColoursWhereCodesAreNotUnderstood) {
  for (const Codes codes : {Codes::Refused, Codes::TakenForText}) {
    EXPECT_EQ(OnATerminal(80, {"--kind", "service", "--columns", "name,version,state"}, codes),
              "name       version         state\n"
              "OiBus.sys  6.2.9200.16384  Stopped\n");
  }
}

TEST_F(ProgramOnATerminal, ShowsWhatFitsOnANarrowOne) {
  EXPECT_EQ(OnATerminal(40, {"--kind", "service"}, Codes::Refused),
            "kind     name       version\n"
            "service  OiBus.sys  6.2.9200.16384\n"
            "\n"
            "There is no room for state, start_type,\n"
            "provider, service, inf and path;\n"
            "--columns shows them.\n");
}

TEST_F(ProgramOnATerminal, LeavesOutNothingThatWasAskedFor) {
  EXPECT_EQ(OnATerminal(33, {"--kind", "service", "--columns", "name,version,state,start_type"}, Codes::Refused),
            "name        OiBus.sys\n"
            "version     6.2.9200.16384\n"
            "state       Stopped\n"
            "start_type  Manual\n");
  EXPECT_EQ(OnATerminal(30, {"--kind", "service", "--group-by", "provider"}, Codes::Refused),
            "provider         count\n"
            "Example Systems  1\n");
}

TEST_F(ProgramOnATerminal, ShowsMoreOnAWideOne) {
  const test::EnvironmentVariable forbidden("NO_COLOR", "1");
  EXPECT_EQ(OnATerminal(120, {"--kind", "service"}),
            "kind     name       version         state    start_type  provider         service  path\n"
            "service  OiBus.sys  6.2.9200.16384  Stopped  Manual      Example Systems  OiBus    "
            "\u2026\\windows\\System32\\drivers\\OiBus.sys\n"
            "\n"
            "There is no room for inf; --columns shows it.\n");
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

/// Runs a list into a file. What it shows on a terminal for errors.
std::string ShownWhileListing(std::vector<std::string> arguments) {
  const test::TemporaryFolder folder;
  arguments.insert(arguments.end(), {"--output", Orvane::Utf8FromWide(folder.Path(L"list.txt"))});
  const driverlist::ScriptedTerminal terminal(STD_ERROR_HANDLE, 80);
  EXPECT_EQ(driverlist::RunList(driverlist::ParseCommandLine(arguments).options.value()), 0);
  return terminal.Text();
}

TEST_F(ProgramOnATerminal, ShowsItsProgress) {
  EXPECT_THAT(ShownWhileListing({}), HasSubstr("reading "));
  EXPECT_EQ(ShownWhileListing({"--quiet"}), "");
}

TEST_F(ProgramOnATerminal, LogsToAFileInsteadOfShowingItsProgress) {
  const test::TemporaryFolder folder;
  const std::string file = Orvane::Utf8FromWide(folder.Path(L"log.txt"));
  {
    const driverlist::LogFile log(file);
    EXPECT_EQ(ShownWhileListing({"--log-file", file}), "");
  }
  EXPECT_THAT(test::FileContent(folder.Path(L"log.txt")), HasSubstr("Start to list registered driver files."));
}

TEST_F(ProgramOnATerminal, LogsInsteadOfShowingItsProgress) {
  test::LogCapture log;
  EXPECT_EQ(ShownWhileListing({"--log-level", "4"}), "");
  EXPECT_THAT(log.Take(), testing::Contains(test::LogLine{4, "Start to list registered driver files."}));
}

}  // namespace
