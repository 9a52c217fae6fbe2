// The README's code is the example that the build compiles, and it runs.
#include <gmock/gmock.h>

#include "program.h"

namespace {

TEST(Readme, ShowsTheExample) {
  const std::string code = "```cpp\n" + test::FileContent(L"..\\..\\examples\\list.cpp") + "```\n";
  EXPECT_THAT(test::FileContent(L"..\\..\\README.md"), testing::HasSubstr(code));
}

TEST(Readme, HasAnExampleThatRuns) {
  const test::ProgramResult result = test::RunProgram("example_list.exe", L"");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
}

}  // namespace
