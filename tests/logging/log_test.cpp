#include "log.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

#include "importhook.h"
#include "logcapture.h"
#include "temporaryfiles.h"

using Orvane::Log;
using test::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

void Write(int level, const std::string& text) { Log(level, "C:\\source\\file.cpp", 42).Stream() << text; }

/// The lines of a text file, without their ends.
std::vector<std::string> Lines(const std::wstring& path) {
  const std::string content = test::FileContent(path);
  std::vector<std::string> lines;
  for (std::size_t start = 0, end; (end = content.find("\r\n", start)) != std::string::npos; start = end + 2) {
    lines.push_back(content.substr(start, end - start));
  }
  return lines;
}

class LogFile : public testing::Test {
 protected:
  void TearDown() override { Orvane::LogToNothing(); }

  test::TemporaryFolder folder;
};

/// The C run-time library of this build.
#if defined(_MSC_VER) && defined(_DEBUG)
constexpr char RunTimeLibrary[] = "ucrtbased.dll";
#elif defined(_MSC_VER)
constexpr char RunTimeLibrary[] = "ucrtbase.dll";
#else
constexpr char RunTimeLibrary[] = "msvcrt.dll";
#endif

constexpr char TimePattern[] = "\\[\\d\\d\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d\\] ";

TEST(Log, IsWrittenNowhereByDefault) {
  int writes = 0;
  const auto count = [&](auto&&...) {
    ++writes;
    return TRUE;
  };
  // Standard error is written by the module itself, a file by the C run-time library.
  HOOK(write, GetModuleHandleA("logging.dll"), WriteFile, count);
  HOOK(writeOfC, GetModuleHandleA(RunTimeLibrary), WriteFile, count);
  HOOK(output, GetModuleHandleA("logging.dll"), OutputDebugStringA, [&](const char*) { ++writes; });
  for (int level = 0; level < 6; ++level) Write(level, "text");
  EXPECT_EQ(writes, 0);
  Orvane::LogToStandardError();
  Write(1, "text");
  EXPECT_EQ(writes, 1);
  Orvane::LogToNothing();
}

TEST(Log, GoesToTheHostsFunctionWithLevelPlaceAndText) {
  std::vector<std::string> lines;
  Orvane::LogToFunction([&](int level, const char* file, int line, const std::string& text) {
    lines.push_back(std::to_string(level) + " " + file + " " + std::to_string(line) + " " + text);
  });
  Write(1, "one");
  Write(4, "four\r\n");
  EXPECT_THAT(lines, ElementsAre("1 C:\\source\\file.cpp 42 one", "4 C:\\source\\file.cpp 42 four\r\n"));
}

TEST(Log, IsEmittedOnceWhenTheObjectIsDestroyed) {
  test::LogCapture log;
  {
    Log line(2, __FILE__, __LINE__);
    line.Stream() << "a";
    line.Stream() << 1 << ' ' << "b";
    EXPECT_THAT(log.Take(), IsEmpty());
  }
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{2, "a1 b"}));
}

TEST(Log, KeepsTheOrderOfDestruction) {
  test::LogCapture log;
  {
    Log outer(1, __FILE__, __LINE__);
    outer.Stream() << "outer";
    Write(2, "inner");
  }
  Write(3, "after");
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{2, "inner"}, LogLine{1, "outer"}, LogLine{3, "after"}));
}

TEST(Log, HoldsBackLinesAboveTheLevel) {
  test::LogCapture log;
  Orvane::SetLogLevel(2);
  for (int level = -1; level < 7; ++level) Write(level, "text");
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{1, "text"}, LogLine{2, "text"}));
  Orvane::SetLogLevel(0);
  Write(1, "text");
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST(Log, LetsAllFourLevelsThroughUntilTheHostChooses) {
  std::vector<int> levels;
  Orvane::LogToFunction([&](int level, const char*, int, const std::string&) { levels.push_back(level); });
  for (int level = -1; level < 7; ++level) Write(level, "text");
  EXPECT_THAT(levels, ElementsAre(1, 2, 3, 4));
}

TEST(Log, EmitsAnEmptyLine) {
  test::LogCapture log;
  Write(2, "");
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{2, ""}));
}

TEST(Log, MakesNoTextForALineThatNobodyWants) {
  test::LogCapture log;
  Orvane::SetLogLevel(1);
  Log line(4, __FILE__, __LINE__);
  line.Stream() << "text";
  EXPECT_EQ(line.Stream().str(), "");
}

TEST(Log, KeepsTheLastError) {
  Orvane::LogToFunction([](int, const char*, int, const std::string&) { SetLastError(99); });
  SetLastError(5);
  Write(1, "text");
  EXPECT_EQ(GetLastError(), 5u);
}

TEST(Log, DropsWhatTheHostsFunctionThrows) {
  int calls = 0;
  Orvane::LogToFunction([&](int, const char*, int, const std::string&) {
    if (++calls == 1) throw std::runtime_error("the host's");
    if (calls == 2) throw 42;
  });
  EXPECT_NO_THROW(Write(1, "first"));
  EXPECT_NO_THROW(Write(1, "second"));
  EXPECT_NO_THROW(Write(1, "third"));
  EXPECT_EQ(calls, 3);
}

TEST(Log, DropsWhatTheHostsFunctionLogs) {
  std::vector<std::string> texts;
  Orvane::LogToFunction([&](int, const char*, int, const std::string& text) {
    texts.push_back(text);
    Write(1, "from inside");
  });
  Write(1, "first");
  Write(1, "second");
  EXPECT_THAT(texts, ElementsAre("first", "second"));
}

TEST(Log, LetsTheHostsFunctionChooseAnotherSink) {
  int calls = 0;
  Orvane::LogToFunction([&](int, const char*, int, const std::string&) {
    ++calls;
    Orvane::LogToNothing();
  });
  Write(1, "first");
  Write(1, "second");
  EXPECT_EQ(calls, 1);
}

TEST(Log, ReleasesTheFormerFunction) {
  const auto owned = std::make_shared<int>(1);
  Orvane::LogToFunction([owned](int, const char*, int, const std::string&) {});
  EXPECT_EQ(owned.use_count(), 2);
  Orvane::LogToFunction({});
  EXPECT_EQ(owned.use_count(), 1);
  Write(1, "to an empty function");
}

TEST(Log, SurvivesUnwinding) {
  test::LogCapture log;
  EXPECT_THROW(
      {
        Log line(1, __FILE__, __LINE__);
        line.Stream() << "before";
        throw std::runtime_error("unwinds");
      },
      std::runtime_error);
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{1, "before"}));
}

TEST(Log, TakesLinesOfManyThreadsWhole) {
  std::vector<std::string> texts;
  Orvane::LogToFunction([&](int, const char*, int, const std::string& text) { texts.push_back(text); });
  std::vector<std::thread> threads;
  for (char c = 'a'; c < 'e'; ++c) {
    threads.emplace_back([c] {
      for (int i = 0; i < 500; ++i) Write(1, std::string(20, c) + std::to_string(i));
    });
  }
  for (std::thread& thread : threads) thread.join();
  ASSERT_EQ(texts.size(), 2000u);
  int next[4] = {};
  for (const std::string& text : texts) {
    const char c = text.at(0);
    EXPECT_EQ(text, std::string(20, c) + std::to_string(next[c - 'a']++));
  }
}

TEST(Log, ChangesSinksWhileThreadsLog) {
  std::thread thread([] {
    for (int i = 0; i < 5000; ++i) Write(1, "text");
  });
  for (int i = 0; i < 500; ++i) {
    Orvane::LogToFunction([](int, const char*, int, const std::string&) {});
    Orvane::LogToNothing();
  }
  thread.join();
}

TEST(Log, LeavesTheHostsFunctionAloneOnceAnotherSinkIsChosen) {
  for (int round = 0; round < 20; ++round) {
    std::atomic<int> calls{0};
    std::atomic<bool> isGone{false};
    std::atomic<int> lateCalls{0};
    Orvane::LogToFunction([&](int, const char*, int, const std::string&) {
      ++calls;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      if (isGone) ++lateCalls;
    });
    std::thread thread([&] {
      while (!isGone) Write(1, "text");
    });
    while (calls == 0) std::this_thread::yield();
    Orvane::LogToNothing();
    isGone = true;
    thread.join();
    EXPECT_EQ(lateCalls, 0);
  }
}

TEST_F(LogFile, HoldsTimeLevelPlaceAndText) {
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"log.txt"), 1 << 20, 3));
  for (int level = 1; level <= 4; ++level) Write(level, "text " + std::to_string(level));
  EXPECT_THAT(Lines(folder.Path(L"log.txt")),
              ElementsAre(MatchesRegex(TimePattern + std::string("\\[error\\] \\[file.cpp:42\\] text 1")),
                          MatchesRegex(TimePattern + std::string("\\[warning\\] \\[file.cpp:42\\] text 2")),
                          MatchesRegex(TimePattern + std::string("\\[info\\] \\[file.cpp:42\\] text 3")),
                          MatchesRegex(TimePattern + std::string("\\[debug\\] \\[file.cpp:42\\] text 4"))))
      << "each line is in the file at once";
}

TEST_F(LogFile, HoldsOneLinePerObjectInUtf8) {
  if (GetACP() != 1252) GTEST_SKIP() << "the bytes are those of code page 1252";
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"log.txt"), 1 << 20, 3));
  Write(1, "Zugriff verweigert f\xFCr\r\nalle.\r\n");
  EXPECT_THAT(Lines(folder.Path(L"log.txt")), ElementsAre(testing::EndsWith("] Zugriff verweigert f\xC3\xBCr  alle.")));
}

TEST_F(LogFile, TakesTextsAsTheyAre) {
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"log.txt"), 1 << 20, 3));
  Write(1, "{} {0} %s %n");
  EXPECT_THAT(Lines(folder.Path(L"log.txt")), ElementsAre(testing::EndsWith("] {} {0} %s %n")));
}

TEST_F(LogFile, IsAppendedTo) {
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"log.txt"), 1 << 20, 3));
  Write(1, "first");
  Orvane::LogToNothing();
  Write(1, "nowhere");
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"log.txt"), 1 << 20, 3));
  Write(1, "second");
  EXPECT_THAT(Lines(folder.Path(L"log.txt")), ElementsAre(testing::EndsWith("first"), testing::EndsWith("second")));
}

TEST_F(LogFile, RotatesAtItsSize) {
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"log.txt"), 1000, 2));
  for (int i = 0; i < 100; ++i) Write(1, std::string(100, 'x'));
  EXPECT_THAT(folder.Files(), testing::UnorderedElementsAre(L"log.txt", L"log.1.txt", L"log.2.txt"));
  for (const std::wstring& file : folder.Files()) EXPECT_LE(Lines(folder.Path(file)).size() * 100, 1000u);
}

TEST_F(LogFile, MayHaveANameOutsideTheAnsiCodePage) {
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"\u0436\u4E2D.txt"), 1 << 20, 3));
  Write(1, "text");
  EXPECT_THAT(folder.Files(), ElementsAre(L"\u0436\u4E2D.txt"));
}

TEST_F(LogFile, ThatCannotBeOpenedLeavesTheFormerSink) {
  test::LogCapture log;
  EXPECT_FALSE(Orvane::LogToFile(folder.Path(L"no\"name"), 1 << 20, 3));
  EXPECT_FALSE(Orvane::LogToFile(L"", 1 << 20, 3));
  EXPECT_FALSE(Orvane::LogToFile(folder.Path(L"log.txt"), 0, 3));
  Write(1, "text");
  EXPECT_THAT(log.Take(), ElementsAre(LogLine{1, "text"}));
}

TEST_F(LogFile, ThatCannotBeWrittenLosesTheLineAndTellsNoConsole) {
  ASSERT_TRUE(Orvane::LogToFile(folder.Path(L"log.txt"), 1 << 20, 3));
  int writes = 0;
  int writesToConsole = 0;
  const auto refuse = [&](HANDLE file, auto&&...) {
    ++writes;
    if (file == GetStdHandle(STD_ERROR_HANDLE) || file == GetStdHandle(STD_OUTPUT_HANDLE)) ++writesToConsole;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
  };
  {
    HOOK(write, GetModuleHandleA(RunTimeLibrary), WriteFile, refuse);
    EXPECT_NO_THROW(Write(1, "lost"));
  }
  EXPECT_GT(writes, 0);
  EXPECT_EQ(writesToConsole, 0);
}

TEST(LogToDebugger, WritesALineToTheDebugger) {
  std::vector<std::string> texts;
  HOOK(output, GetModuleHandleA("logging.dll"), OutputDebugStringA,
       [&](const char* text) { texts.emplace_back(text); });
  Orvane::LogToDebugger();
  Write(2, "text");
  Orvane::LogToNothing();
  EXPECT_THAT(texts, ElementsAre(MatchesRegex(TimePattern + std::string("\\[warning\\] \\[file.cpp:42\\] text\r\n"))));
}

TEST(LogToStandardError, WritesALineToStandardError) {
  testing::internal::CaptureStderr();
  Orvane::LogToStandardError();
  Write(3, "text");
  Orvane::LogToNothing();
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("[info] [file.cpp:42] text"));
}

}  // namespace
