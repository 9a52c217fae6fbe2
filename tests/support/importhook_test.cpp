#include "importhook.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

#include "importhook_callee.h"

namespace {

TEST(ImportHook, AnswersInsteadOfThePlatform) {
  HOOK(hook, test::ThisProgram(), GetCurrentProcessId, [] { return DWORD{42}; });
  EXPECT_EQ(ProcessId(), 42u);
}

TEST(ImportHook, SeesTheArgumentsAndForwards) {
  std::string seen;
  HOOK(hook, test::ThisProgram(), GetModuleHandleA, [&](const char* name) {
    seen = name;
    return hook.Real("kernel32.dll");
  });
  EXPECT_EQ(Module("no such module"), hook.Real("kernel32.dll"));
  EXPECT_EQ(seen, "no such module");
}

TEST(ImportHook, EndsWithItsLife) {
  const DWORD real = ProcessId();
  {
    HOOK(hook, test::ThisProgram(), GetCurrentProcessId, [] { return DWORD{42}; });
  }
  EXPECT_EQ(ProcessId(), real);
}

TEST(ImportHook, Nests) {
  HOOK(outer, test::ThisProgram(), GetCurrentProcessId, [] { return DWORD{1}; });
  {
    HOOK(inner, test::ThisProgram(), GetCurrentProcessId, [&] { return inner.Real() + 1; });
    EXPECT_EQ(ProcessId(), 2u);
  }
  EXPECT_EQ(ProcessId(), 1u);
}

TEST(ImportHook, LeavesOtherModulesAlone) {
  HOOK(hook, LoadLibraryA("driverinfo.dll"), GetLastError, [] { return DWORD{42}; });
  SetLastError(7);
  EXPECT_EQ(GetLastError(), 7u);
}

TEST(ImportHook, ListsTheImportsFromOneDll) {
  const std::vector<std::string> functions = test::ImportedFunctions(LoadLibraryA("driverinfo.dll"), "SetupApi.dll");
  EXPECT_THAT(functions, testing::Contains("SetupOpenInfFileA"));
  EXPECT_THAT(functions, testing::Each(testing::StartsWith("Setup")));
}

TEST(ImportHook, RefusesAFunctionThatTheModuleDoesNotImport) {
  EXPECT_THROW(test::ImportSlot(test::ThisProgram(), "RegisterEventSourceA"), std::runtime_error);
}

}  // namespace
