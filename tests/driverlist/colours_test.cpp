#include "terminal/colours.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "importhook.h"
#include "scratchmachine.h"

using driverlist::Colours;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Standard output is a terminal in mode 3.
class ColourTerminal : public testing::Test {
 protected:
  const HMODULE program = test::ThisProgram();
  std::vector<DWORD> modes;
  BOOL takesCodes = TRUE;

  HOOK(get, program, GetConsoleMode, [](HANDLE handle, DWORD* mode) -> BOOL {
    *mode = 3;
    return handle == GetStdHandle(STD_OUTPUT_HANDLE);
  });
  HOOK(set, program, SetConsoleMode, [this](HANDLE, DWORD mode) {
    modes.push_back(mode);
    return takesCodes;
  });
};

TEST_F(ColourTerminal, ShowsColoursAndIsAsItWasAfterwards) {
  {
    const Colours colours(true);
    EXPECT_TRUE(colours.AreOn());
    EXPECT_THAT(modes, ElementsAre(7u));
  }
  EXPECT_THAT(modes, ElementsAre(7u, 3u));
}

TEST_F(ColourTerminal, ShowsNoneWhenTheUserForbidsThem) {
  const test::EnvironmentVariable forbidden("NO_COLOR", "1");
  EXPECT_FALSE(Colours(true).AreOn());
  EXPECT_THAT(modes, IsEmpty());
}

TEST_F(ColourTerminal, IsNotToldByAnEmptyVariable) {
  SetEnvironmentVariableW(L"NO_COLOR", L"");
  EXPECT_TRUE(Colours(true).AreOn());
  SetEnvironmentVariableW(L"NO_COLOR", nullptr);
}

TEST_F(ColourTerminal, ShowsNoneWhereNoneAreWanted) {
  EXPECT_FALSE(Colours(false).AreOn());
  EXPECT_THAT(modes, IsEmpty());
}

TEST_F(ColourTerminal, ShowsNoneWhenItCannot) {
  takesCodes = FALSE;
  {
    const Colours colours(true);
    EXPECT_FALSE(colours.AreOn());
  }
  EXPECT_THAT(modes, ElementsAre(7u));
}

TEST_F(ColourTerminal, IsNoFile) {
  HOOK(noConsole, program, GetConsoleMode, [](HANDLE, DWORD*) { return FALSE; });
  EXPECT_FALSE(Colours(true).AreOn());
  EXPECT_THAT(modes, IsEmpty());
}

}  // namespace
