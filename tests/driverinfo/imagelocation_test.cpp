#include <gmock/gmock.h>

#include <algorithm>

#include "importhook.h"
#include "locales.h"
#include "platform/handles.h"
#include "redirection.h"
#include "scratchmachine.h"
#include "servicedrivers.h"

using namespace Orvane;
using test::ScratchFile;
using test::SystemDirectory;
using test::ThisProgram;
using testing::ElementsAre;

namespace {

TEST(ServiceNames, NameEveryStateAndNothingElse) {
  std::vector<std::string> names;
  for (DWORD state = 0; state < 9; ++state) names.push_back(ServiceStateName(state));
  EXPECT_THAT(names, ElementsAre("Reserved", "Stopped", "Start Pending", "Stop Pending", "Running", "Continue Pending",
                                 "Pause Pending", "Paused", ""));
  EXPECT_EQ(ServiceStateName(0xFFFFFFFF), "");
}

TEST(ServiceNames, NameEveryStartTypeAndNothingElse) {
  std::vector<std::string> names;
  for (DWORD type = 0; type < 6; ++type) names.push_back(ServiceStartTypeName(type));
  EXPECT_THAT(names, ElementsAre("Boot Start", "System Start", "Automatic", "Manual", "Disabled", ""));
  EXPECT_EQ(ServiceStartTypeName(0xFFFFFFFF), "");
}

TEST(ImageFileName, IsTheLastComponentInLowerCase) {
  EXPECT_EQ(GetImageFileName("\\SystemRoot\\System32\\drivers\\ACPI.sys", "ACPI"), "acpi.sys");
  EXPECT_EQ(GetImageFileName("NDIS.SYS", "x"), "ndis.sys");
  EXPECT_EQ(GetImageFileName("C:\\A.B\\C.D.Sys", "x"), "c.d.sys");
  EXPECT_EQ(GetImageFileName("folder\\", "x"), "");
}

TEST(ImageFileName, OfAnObjectPathLosesFourCharactersWhereverTheMarkerStands) {
  EXPECT_EQ(GetImageFileName("\\??\\C:\\x\\Y.sys", "x"), "C:\\x\\Y.sys");
  EXPECT_EQ(GetImageFileName("abc\\??\\d.sys", "x"), "??\\d.sys");
  EXPECT_EQ(GetImageFileName("\\??\\", "x"), "");
  EXPECT_EQ(GetImageFileName("\\??", "x"), "??");
}

TEST(ImageFileName, OfAnEmptyPathIsTheServicesOwn) {
  EXPECT_EQ(GetImageFileName("", "Foo"), "Foo.sys");
  EXPECT_EQ(GetImageFileName(nullptr, "Foo"), "Foo.sys");
  EXPECT_EQ(GetImageFileName("", ""), ".sys");
  EXPECT_EQ(GetImageFileName(nullptr, nullptr), ".sys");
}

TEST(ImageFileName, IsLoweredWithTheGlobalLocale) {
  EXPECT_EQ(GetImageFileName("\\Drivers\\QA\xC4.sys", "x"), "qa\xC4.sys") << "the classic locale changes A to Z only";
  const test::HostLocale<test::OddLetters> locale;
  EXPECT_EQ(GetImageFileName("\\Drivers\\QA.sys", "x"), "xa.sys");
}

/// The paths under which FindDriverFile looks for `path` when there is no such file; in them "S:" stands for the system
/// directory and "W:" for the Windows directory.
std::vector<std::string> CandidatesOf(std::string path) {
  std::vector<std::string> candidates;
  HOOK(find, ThisProgram(), FindFirstFileA, [&](const char* candidate, WIN32_FIND_DATAA*) {
    candidates.emplace_back(candidate);
    return INVALID_HANDLE_VALUE;
  });
  HOOK(system, ThisProgram(), GetSystemDirectoryA, [](char* buffer, UINT) -> UINT {
    lstrcpyA(buffer, "S:");
    return 2;
  });
  HOOK(windows, ThisProgram(), GetWindowsDirectoryA, [](char* buffer, UINT) -> UINT {
    lstrcpyA(buffer, "W:");
    return 2;
  });
  const std::string before = path;
  WIN32_FIND_DATAA data;
  EXPECT_EQ(FindDriverFile(path, &data), INVALID_HANDLE_VALUE);
  EXPECT_EQ(path, before);
  return candidates;
}

TEST(ImageLocation, TakesAPathWithAColonAsItStandsFirst) {
  EXPECT_THAT(CandidatesOf("C:\\Drivers\\x.sys"),
              ElementsAre("C:\\Drivers\\x.sys", "S:\\C:\\Drivers\\x.sys", "W:\\C:\\Drivers\\x.sys"));
  EXPECT_THAT(CandidatesOf("System32\\a:b.sys"),
              ElementsAre("System32\\a:b.sys", "S:\\System32\\a:b.sys", "W:\\System32\\a:b.sys"));
}

TEST(ImageLocation, PutsTheSystemDirectoryInPlaceOfItsName) {
  EXPECT_THAT(CandidatesOf("System32\\drivers\\x.sys"),
              ElementsAre("S:\\drivers\\x.sys", "S:\\System32\\drivers\\x.sys", "W:\\System32\\drivers\\x.sys"));
  EXPECT_EQ(CandidatesOf("system32\\DRIVERS\\x.sys")[0], "S:\\DRIVERS\\x.sys");
  EXPECT_EQ(CandidatesOf("\\system32\\drivers\\x.sys")[0], "S:\\drivers\\x.sys");
  EXPECT_EQ(CandidatesOf("\\System32\\drivers\\x.sys")[0], "S:\\drivers\\x.sys");
  EXPECT_EQ(CandidatesOf("\\SystemRoot\\System32\\drivers\\ACPI.sys")[0], "S:\\drivers\\ACPI.sys");
  EXPECT_EQ(CandidatesOf("\\SystemRoot\\SYSTEM32\\x.sys")[0], "S:\\x.sys");
  EXPECT_EQ(CandidatesOf("System32")[0], "S:");
}

TEST(ImageLocation, CutsBehindTheLast32OfTheWholePath) {
  EXPECT_EQ(CandidatesOf("\\SystemRoot\\System32\\drivers\\ser32x.sys")[0], "S:x.sys");
  EXPECT_EQ(CandidatesOf("System32\\drivers32\\x.sys")[0], "S:\\x.sys");
  EXPECT_EQ(CandidatesOf("System32\\x.sys32")[0], "S:");
}

TEST(ImageLocation, CutsOneCharacterWhereThereIsNo32) {
  EXPECT_EQ(CandidatesOf("\\SystemRoot\\x.sys")[0], "S:SystemRoot\\x.sys");
  EXPECT_EQ(CandidatesOf("\\SystemRoot\\")[0], "S:SystemRoot\\");
}

TEST(ImageLocation, TakesAnythingElseAsAFileOfTheDriversFolder) {
  EXPECT_THAT(CandidatesOf("x.sys"), ElementsAre("S:\\drivers\\x.sys", "S:\\x.sys", "W:\\x.sys"));
  EXPECT_THAT(CandidatesOf("SYSTEM32\\drivers\\x.sys"),
              ElementsAre("S:\\drivers\\SYSTEM32\\drivers\\x.sys", "S:\\SYSTEM32\\drivers\\x.sys",
                          "W:\\SYSTEM32\\drivers\\x.sys"));
  EXPECT_EQ(CandidatesOf("\\systemroot\\x.sys")[0], "S:\\drivers\\\\systemroot\\x.sys");
  EXPECT_EQ(CandidatesOf("\\SystemRoo")[0], "S:\\drivers\\\\SystemRoo");
  EXPECT_EQ(CandidatesOf("folder\\x.sys")[0], "S:\\drivers\\folder\\x.sys");
}

TEST(ImageLocation, OfAnEmptyPathEndsInASeparator) {
  EXPECT_THAT(CandidatesOf(""), ElementsAre("S:\\drivers\\", "S:\\", "W:\\"));
}

TEST(ImageLocation, BoundsTheDirectoriesByTheirBuffers) {
  const auto fill = [](char* buffer, UINT size) -> UINT {
    EXPECT_EQ(size, UINT{MAX_PATH});
    std::fill(buffer, buffer + size, 'd');
    return size + 100;
  };
  std::vector<std::string> candidates;
  HOOK(find, ThisProgram(), FindFirstFileA, [&](const char* candidate, WIN32_FIND_DATAA*) {
    candidates.emplace_back(candidate);
    return INVALID_HANDLE_VALUE;
  });
  HOOK(system, ThisProgram(), GetSystemDirectoryA, fill);
  HOOK(windows, ThisProgram(), GetWindowsDirectoryA, fill);
  std::string path = "x.sys";
  WIN32_FIND_DATAA data;
  FindDriverFile(path, &data);
  const std::string directory(MAX_PATH, 'd');
  EXPECT_THAT(candidates, ElementsAre(directory + "\\drivers\\x.sys", directory + "\\x.sys", directory + "\\x.sys"));
}

TEST(ImageLocation, GoesOnWithoutDirectoriesThatTheSystemDoesNotTell) {
  std::vector<std::string> candidates;
  HOOK(find, ThisProgram(), FindFirstFileA, [&](const char* candidate, WIN32_FIND_DATAA*) {
    candidates.emplace_back(candidate);
    return INVALID_HANDLE_VALUE;
  });
  HOOK(system, ThisProgram(), GetSystemDirectoryA, [](char*, UINT) { return UINT{0}; });
  HOOK(windows, ThisProgram(), GetWindowsDirectoryA, [](char*, UINT) { return UINT{0}; });
  std::string path = "x.sys";
  WIN32_FIND_DATAA data;
  FindDriverFile(path, &data);
  EXPECT_THAT(candidates, ElementsAre("\\drivers\\x.sys", "\\x.sys", "\\x.sys"));
}

TEST(ImageLocation, AsksForTheWindowsDirectoryOnceMoreAndKeepsTheSystemDirectoryWithoutAnswer) {
  std::vector<std::string> candidates;
  HOOK(find, ThisProgram(), FindFirstFileA, [&](const char* candidate, WIN32_FIND_DATAA*) {
    candidates.emplace_back(candidate);
    return INVALID_HANDLE_VALUE;
  });
  HOOK(system, ThisProgram(), GetSystemDirectoryA, [](char* buffer, UINT) -> UINT {
    lstrcpyA(buffer, "S:");
    return 2;
  });
  int calls = 0;
  bool answers = true;
  HOOK(windows, ThisProgram(), GetWindowsDirectoryA, [&](char* buffer, UINT) -> UINT {
    ++calls;
    if (answers) lstrcpyA(buffer, ("W" + std::to_string(calls) + ":").c_str());
    return answers ? 3 : 0;
  });
  std::string path = "x.sys";
  WIN32_FIND_DATAA data;
  FindDriverFile(path, &data);
  EXPECT_EQ(candidates.at(2), "W2:\\x.sys");
  answers = false;
  candidates.clear();
  FindDriverFile(path, &data);
  EXPECT_EQ(candidates.at(2), "S:\\x.sys");
}

const std::string LookUpDisable = "look up Wow64DisableWow64FsRedirection";
const std::string LookUpRevert = "look up Wow64RevertWow64FsRedirection";

/// Runs FindDriverFile on "x.sys", with a file at `existing` that shows only without redirection.
std::vector<std::string> CallsWhileFinding(test::Redirection& redirection, const std::string& existing,
                                           std::string& path) {
  HOOK(find, ThisProgram(), FindFirstFileA, [&](const char* candidate, WIN32_FIND_DATAA*) -> HANDLE {
    redirection.calls.push_back("find");
    return redirection.off && candidate == existing ? reinterpret_cast<HANDLE>(std::intptr_t{77})
                                                    : INVALID_HANDLE_VALUE;
  });
  WIN32_FIND_DATAA data;
  const HANDLE found = FindDriverFile(path, &data);
  EXPECT_EQ(found, existing.empty() ? INVALID_HANDLE_VALUE : reinterpret_cast<HANDLE>(std::intptr_t{77}));
  return redirection.calls;
}

TEST(ImageLocation, RetriesWithRedirectionSwitchedOffAndRevertsToNull) {
  test::Redirection redirection(ThisProgram(), TRUE);
  std::string path = "x.sys";
  const auto calls = CallsWhileFinding(redirection, SystemDirectory() + "\\x.sys", path);
  const std::vector<std::string> once = {"find", "load kernel32.dll 8", LookUpDisable, "disable",
                                         "find", LookUpRevert,          "revert null", "free"};
  std::vector<std::string> twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_EQ(calls, twice);
  EXPECT_EQ(path, SystemDirectory() + "\\x.sys");
}

TEST(ImageLocation, TriesSixTimesAtMost) {
  test::Redirection redirection(ThisProgram(), TRUE);
  std::string path = "x.sys";
  const auto calls = CallsWhileFinding(redirection, "", path);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "find"), 6);
  EXPECT_EQ(path, "x.sys");
}

TEST(ImageLocation, RetriesOnlyWhenRedirectionWasSwitchedOffForCertain) {
  for (const BOOL answer : {FALSE, BOOL{2}}) {
    test::Redirection redirection(ThisProgram(), answer);
    std::string path = "x.sys";
    const auto calls = CallsWhileFinding(redirection, "", path);
    EXPECT_EQ(std::vector<std::string>(calls.begin(), calls.begin() + 7),
              (std::vector<std::string>{"find", "load kernel32.dll 8", LookUpDisable, "disable", LookUpRevert,
                                        "revert null", "free"}));
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "find"), 3);
  }
}

TEST(ImageLocation, RevertsAlsoWhereThereIsNothingToSwitchOff) {
  test::Redirection redirection(ThisProgram(), TRUE);
  redirection.hasDisable = false;
  std::string path = "x.sys";
  const auto calls = CallsWhileFinding(redirection, "", path);
  EXPECT_EQ(
      std::vector<std::string>(calls.begin(), calls.begin() + 6),
      (std::vector<std::string>{"find", "load kernel32.dll 8", LookUpDisable, LookUpRevert, "revert null", "free"}));
}

TEST(ImageLocation, GoesOnWhereThereIsNothingToRevert) {
  test::Redirection redirection(ThisProgram(), TRUE);
  redirection.hasRevert = false;
  std::string path = "x.sys";
  const auto calls = CallsWhileFinding(redirection, SystemDirectory() + "\\drivers\\x.sys", path);
  EXPECT_EQ(calls, (std::vector<std::string>{"find", "load kernel32.dll 8", LookUpDisable, "disable", "find",
                                             LookUpRevert, "free"}));
}

TEST(ImageLocation, LooksUpTheRevertAlsoWhenTheLibraryDoesNotLoad) {
  test::Redirection redirection(ThisProgram(), TRUE);
  redirection.loads = false;
  std::string path = "x.sys";
  const auto calls = CallsWhileFinding(redirection, "", path);
  EXPECT_EQ(
      std::vector<std::string>(calls.begin(), calls.begin() + 5),
      (std::vector<std::string>{"find", "load kernel32.dll 8", LookUpRevert + " in null", "revert null", "free null"}));
}

TEST(ImageLocation, LeavesRedirectionAloneWhenTheFileIsThere) {
  test::Redirection redirection(ThisProgram(), TRUE);
  HOOK(find, ThisProgram(), FindFirstFileA,
       [](const char*, WIN32_FIND_DATAA*) { return reinterpret_cast<HANDLE>(std::intptr_t{77}); });
  std::string path = "x.sys";
  WIN32_FIND_DATAA data;
  EXPECT_EQ(FindDriverFile(path, &data), reinterpret_cast<HANDLE>(std::intptr_t{77}));
  EXPECT_THAT(redirection.calls, testing::IsEmpty());
}

struct ImageLocationOnDisk : test::ScratchMachine {
  /// Finds `path` and returns where, with the size of the file there; empty when it is nowhere.
  static std::string Found(std::string path) {
    WIN32_FIND_DATAA data{};
    const FindHandle found(FindDriverFile(path, &data));
    return found ? path + " " + std::to_string(data.nFileSizeLow) : std::string();
  }
};

TEST_F(ImageLocationOnDisk, FindsAFileOfTheDriversFolder) {
  const std::string path = SystemDirectory() + "\\drivers\\oi_x.sys";
  const ScratchFile file(path, 77);
  EXPECT_EQ(Found("oi_x.sys"), path + " 77");
  EXPECT_EQ(Found("System32\\drivers\\oi_x.sys"), path + " 77");
  EXPECT_EQ(Found("\\SystemRoot\\system32\\drivers\\oi_x.sys"), path + " 77");
  EXPECT_EQ(Found(path), path + " 77");
  EXPECT_EQ(Found("\\SystemRoot\\oi_x.sys"), "");
  EXPECT_EQ(Found(""), "");
}

TEST_F(ImageLocationOnDisk, FindsAFileBelowTheWindowsDirectoryLast) {
  const ScratchFile file(SystemDirectory() + "\\drivers\\oi_x.sys", 77);
  const std::string windows = SystemDirectory().substr(0, SystemDirectory().rfind('\\'));
  EXPECT_EQ(Found("SYSTEM32\\drivers\\oi_x.sys"), windows + "\\SYSTEM32\\drivers\\oi_x.sys 77");
}

TEST_F(ImageLocationOnDisk, FindsAFileOfTheSystemDirectorySecond) {
  const ScratchFile file(SystemDirectory() + "\\oi_folder\\oi_x.sys", 5);
  EXPECT_EQ(Found("oi_folder\\oi_x.sys"), SystemDirectory() + "\\oi_folder\\oi_x.sys 5");
}

TEST_F(ImageLocationOnDisk, MissesAFileWhoseNameHolds32) {
  const ScratchFile file(SystemDirectory() + "\\drivers\\oi_ser32x.sys", 5);
  EXPECT_EQ(Found("\\SystemRoot\\System32\\drivers\\oi_ser32x.sys"), "");
  EXPECT_EQ(Found("oi_ser32x.sys"), SystemDirectory() + "\\drivers\\oi_ser32x.sys 5");
}

TEST(LastErrorText, IsTheSystemsWithItsLineBreak) {
  SetLastError(ERROR_FILE_NOT_FOUND);
  const std::string text = GetLastErrorText();
  EXPECT_GT(text.size(), 2u);
  EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
  SetLastError(ERROR_ACCESS_DENIED);
  EXPECT_NE(GetLastErrorText(), text);
}

TEST(LastErrorText, IsAskedForInTheNeutralLanguageAndReleased) {
  std::string asked;
  HOOK(format, ThisProgram(), FormatMessageA,
       [&](DWORD flags, const void* source, DWORD code, DWORD language, char* buffer, DWORD size, va_list* arguments) {
         asked = std::to_string(flags) + " " + std::to_string(code) + " " + std::to_string(language) + " " +
                 std::to_string(size) + (source == nullptr && arguments == nullptr ? "" : " with more");
         return format.Real(flags, source, code, language, buffer, size, arguments);
       });
  int released = 0;
  HOOK(release, ThisProgram(), LocalFree, [&](HLOCAL memory) {
    ++released;
    return release.Real(memory);
  });
  SetLastError(5);
  GetLastErrorText();
  EXPECT_EQ(asked, "4864 5 1024 0");
  EXPECT_EQ(released, 1);
}

TEST(LastErrorText, IsEmptyForAnErrorThatTheSystemDoesNotKnow) {
  SetLastError(0xDEADBEEF);
  EXPECT_EQ(GetLastErrorText(), "");
}

TEST(LastErrorText, IsEmptyWhenTheSystemFails) {
  HOOK(format, ThisProgram(), FormatMessageA,
       [](DWORD, const void*, DWORD, DWORD, char*, DWORD, va_list*) { return DWORD{0}; });
  SetLastError(ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(GetLastErrorText(), "");
}

}  // namespace
