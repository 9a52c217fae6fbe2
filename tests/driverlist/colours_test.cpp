#include "terminal/colours.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "importhook.h"
#include "scratchmachine.h"
#include "scriptedterminal.h"

using driverlist::Codes;
using driverlist::Colours;
using driverlist::ScriptedTerminal;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Nothing of them is left on `terminal`.
void ExpectNoColours(const ScriptedTerminal& terminal, bool wanted = true) {
  EXPECT_FALSE(Colours(wanted).AreOn());
  EXPECT_THAT(terminal.Modes(), IsEmpty());
  EXPECT_EQ(terminal.Text(), "");
  EXPECT_EQ(terminal.Screens(), 0u);
}

TEST(ColourTerminal, ShowsColoursAndIsAsItWasAfterwards) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80);
  {
    const Colours colours(true);
    EXPECT_TRUE(colours.AreOn());
    EXPECT_THAT(terminal.Modes(), ElementsAre(7u));
  }
  EXPECT_THAT(terminal.Modes(), ElementsAre(7u, 3u));
  EXPECT_EQ(terminal.Text(), "") << "what it understands is tried elsewhere";
  EXPECT_EQ(terminal.Screens(), 0u);
}

TEST(ColourTerminal, ShowsNoneWhenTheUserForbidsThem) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80);
  const test::EnvironmentVariable forbidden("NO_COLOR", "1");
  ExpectNoColours(terminal);
}

TEST(ColourTerminal, IsNotToldByAnEmptyVariable) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80);
  SetEnvironmentVariableW(L"NO_COLOR", L"");
  EXPECT_TRUE(Colours(true).AreOn());
  SetEnvironmentVariableW(L"NO_COLOR", nullptr);
}

TEST(ColourTerminal, ShowsNoneWhereNoneAreWanted) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80);
  ExpectNoColours(terminal, false);
}

TEST(ColourTerminal, ShowsNoneWhereCodesAreRefused) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80, Codes::Refused);
  ExpectNoColours(terminal);
}

TEST(ColourTerminal, ShowsNoneWhereCodesAreTakenForText) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80, Codes::TakenForText);
  ExpectNoColours(terminal);
}

TEST(ColourTerminal, ShowsNoneWhereNothingCanBeTried) {
  const ScriptedTerminal terminal(STD_OUTPUT_HANDLE, 80);
  HOOK(create, test::ThisProgram(), CreateConsoleScreenBuffer,
       [](DWORD, DWORD, const SECURITY_ATTRIBUTES*, DWORD, void*) -> HANDLE { return INVALID_HANDLE_VALUE; });
  ExpectNoColours(terminal);
}

TEST(ColourTerminal, IsNoFile) {
  const ScriptedTerminal terminal(STD_ERROR_HANDLE, 80);
  ExpectNoColours(terminal);
}

}  // namespace
