// The library as a guest: it leaves the process of its host as it found it.
#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <fcntl.h>
#include <float.h>
#include <io.h>
#include <psapi.h>
#include <sys/stat.h>

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <ostream>
#include <tuple>

#include "driverinfo.h"
#include "freshlibrary.h"
#include "locales.h"
#include "redirection.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

namespace {

using sweeps::FreshLibrary;

std::vector<std::string> NamesOf(const sweeps::Guest& host) {
  std::vector<std::string> names;
  for (const test::Fields& record : host.Records()) {
    if (record.count("path") > 0) names.push_back(record.at("name"));
  }
  return names;
}

class HostProcess : public test::ScratchMachine {
 protected:
  static std::string DriverPath(const std::string& file) { return test::SystemDirectory() + "\\drivers\\" + file; }

  // Without version resource: the library looks for it twice, the second time without redirection.
  const test::ScratchFile m_image{DriverPath("OiPlain.sys"), 2048};
  const test::DriverService m_service{"OiPlain", "System32\\drivers\\OiPlain.sys"};
};

// --- What loading and unloading leaves behind.

/// What a process holds.
struct Holdings {
  std::ptrdiff_t modules;
  std::ptrdiff_t heaps;
  /// Blocks of all heaps, and their bytes.
  std::ptrdiff_t blocks;
  std::ptrdiff_t bytes;
};

bool operator==(const Holdings& a, const Holdings& b) {
  return std::tie(a.modules, a.heaps, a.blocks, a.bytes) == std::tie(b.modules, b.heaps, b.blocks, b.bytes);
}

std::ostream& operator<<(std::ostream& stream, const Holdings& holdings) {
  return stream << holdings.modules << " modules, " << holdings.heaps << " heaps, " << holdings.blocks << " blocks of "
                << holdings.bytes << " bytes";
}

Holdings HoldingsNow() {
  HMODULE modules[1024];
  DWORD size = 0;
  K32EnumProcessModules(GetCurrentProcess(), modules, sizeof(modules), &size);
  HANDLE heaps[256];
  const DWORD heapCount = GetProcessHeaps(256, heaps);
  Holdings now{static_cast<std::ptrdiff_t>(size / sizeof(HMODULE)), static_cast<std::ptrdiff_t>(heapCount), 0, 0};
  for (DWORD i = 0; i < heapCount; ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
      ++now.blocks;
      now.bytes += static_cast<std::ptrdiff_t>(entry.cbData);
    }
    HeapUnlock(heaps[i]);
  }
  return now;
}

/// What `act` leaves behind that is done `times` times, after it was done often enough for the platform to have filled
/// its caches.
template <typename Act>
Holdings LeftBehind(int times, Act act) {
  for (int i = 0; i < 10; ++i) act();
  const Holdings before = HoldingsNow();
  for (int i = 0; i < times; ++i) act();
  const Holdings after = HoldingsNow();
  return {after.modules - before.modules, after.heaps - before.heaps, after.blocks - before.blocks,
          after.bytes - before.bytes};
}

constexpr Holdings Nothing{0, 0, 0, 0};

/// False for a heap that shows several small blocks as one, and so grows in steps.
bool HeapShowsEveryBlock() {
  std::vector<void*> kept;
  kept.reserve(200);
  const Holdings left = LeftBehind(100, [&] { kept.push_back(std::malloc(1000)); });
  for (void* const block : kept) std::free(block);
  return left.blocks == 100;
}

/// Whether the platform itself keeps memory of each conversation with the service manager, as Wine 10 does.
bool ServiceManagerKeepsMemory() {
  return LeftBehind(100, [] {
           const Orvane::ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
         }).bytes > 6400;
}

/// Expects that `act` loses nothing; on a heap that grows in steps, less than a small block each time.
template <typename Act>
void ExpectNothingLost(int times, Act act) {
  const bool isExact = HeapShowsEveryBlock();
  const Holdings left = LeftBehind(times, act);
  if (isExact) {
    EXPECT_EQ(left, Nothing);
    return;
  }
  EXPECT_EQ(left.modules, 0);
  EXPECT_EQ(left.heaps, 0);
  EXPECT_LT(left.bytes, 64 * times) << left;
}

TEST_F(HostProcess, LosesNothingToAThousandLoads) {
  const Orvane::ModuleHandle inventory(LoadLibraryA("pciinfo.dll"));
  const Orvane::ModuleHandle logging(LoadLibraryA("logging.dll"));
  ExpectNothingLost(1000, [] { FreshLibrary(); });
}

TEST_F(HostProcess, LosesNothingToLoadsOfAllModules) {
  const auto act = [] {
    FreshLibrary();
    EXPECT_EQ(GetModuleHandleA("pciinfo.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleA("logging.dll"), nullptr);
  };
  ExpectNothingLost(100, act);
}

TEST_F(HostProcess, LosesNothingToDeviceListings) {
  ExpectNothingLost(200, [] {
    const FreshLibrary library;
    library.Host().List(Orvane::ByDevice);
  });
}

TEST_F(HostProcess, LosesNothingToListings) {
  if (ServiceManagerKeepsMemory()) GTEST_SKIP() << "the platform itself keeps memory of each service listing";
  ExpectNothingLost(50, [] {
    const FreshLibrary library;
    library.Host().List(Orvane::All);
  });
}

TEST_F(HostProcess, WouldShowWhatIsLost) {
  std::vector<void*> lost;
  lost.reserve(200);
  const Holdings left = LeftBehind(100, [&] { lost.push_back(std::malloc(1000)); });
  // A heap may report several small blocks as one.
  EXPECT_GT(left.blocks, 0);
  EXPECT_GE(left.bytes, 100'000);
  for (void* const block : lost) std::free(block);

  const Holdings before = HoldingsNow();
  const Orvane::ModuleHandle module(LoadLibraryA("winmm.dll"));
  EXPECT_GT(HoldingsNow().modules, before.modules);
}

// --- The locale of the host.

/// Letters of a host, which tells when nobody uses them any more.
class CountedLetters : public test::OddLetters {
 public:
  CountedLetters() { ++count; }
  ~CountedLetters() override { --count; }

  static inline int count = 0;
};

TEST_F(HostProcess, ChangesNoLocale) {
  const std::string ofC = std::setlocale(LC_ALL, nullptr);
  const std::locale ofCpp;
  {
    const FreshLibrary library;
    library.Host().List(Orvane::All);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), ofC);
    EXPECT_EQ(std::locale(), ofCpp);
  }
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), ofC);
  EXPECT_EQ(std::locale(), ofCpp);
}

TEST_F(HostProcess, ChangesNoLocaleOfTheHostAndKeepsNone) {
  const std::string ofC = std::setlocale(LC_ALL, nullptr);
  {
    const test::HostLocale<CountedLetters> locale;
    const std::locale ofCpp;
    const FreshLibrary library;
    library.Host().List(Orvane::All);
    EXPECT_EQ(std::locale(), ofCpp);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), ofC);
    EXPECT_EQ(CountedLetters::count, 1);
  }
  EXPECT_EQ(CountedLetters::count, 0);
}

TEST_F(HostProcess, HasTheLettersOfItsLocaleInNamesThatTheLibraryLowers) {
  const test::ScratchFile image(DriverPath("oix.sys"), 1);
  const test::DriverService service("OiService", "OiQ.sys");
  {
    const FreshLibrary library;
    library.Host().List(Orvane::Registered);
    EXPECT_THAT(NamesOf(library.Host()), testing::ElementsAre("OiPlain.sys"));
  }
  const test::HostLocale<test::OddLetters> locale;
  const FreshLibrary library;
  library.Host().List(Orvane::Registered);
  EXPECT_THAT(NamesOf(library.Host()), testing::ElementsAre("OiPlain.sys", "oix.sys"));
}

// --- The state of the thread and of the process.

/// What a host may have set, and what it expects to find again.
auto StateNow() {
  std::wstring directory(MAX_PATH, L'\0');
  directory.resize(GetCurrentDirectoryW(MAX_PATH, directory.data()));
  wchar_t* const block = GetEnvironmentStringsW();
  const wchar_t* end = block;
  while (*end != L'\0') end += std::wcslen(end) + 1;
  const std::wstring environment(block, static_cast<std::size_t>(end - block));
  FreeEnvironmentStringsW(block);
  LPTOP_LEVEL_EXCEPTION_FILTER const filter = SetUnhandledExceptionFilter(nullptr);
  SetUnhandledExceptionFilter(filter);
  return std::make_tuple(directory, environment, GetErrorMode(), GetThreadErrorMode(), GetThreadLocale(),
                         GetThreadPriority(GetCurrentThread()), _controlfp(0, 0), filter, std::get_terminate(),
                         GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE),
                         GetStdHandle(STD_ERROR_HANDLE), GetConsoleWindow(), GetConsoleOutputCP());
}

TEST_F(HostProcess, KeepsItsState) {
  SetErrorMode(SEM_FAILCRITICALERRORS);
  SetThreadErrorMode(SEM_NOOPENFILEERRORBOX, nullptr);
  const auto before = StateNow();
  {
    const FreshLibrary library;
    for (const int mode : {Orvane::ByDevice, Orvane::Registered, Orvane::All}) {
      library.Host().List(mode);
      EXPECT_TRUE(StateNow() == before) << mode;
    }
  }
  EXPECT_TRUE(StateNow() == before);
}

TEST_F(HostProcess, KeepsRedirectionSwitchedOn) {
  const FreshLibrary library;
  test::Redirection redirection(test::Library(), TRUE);
  library.Host().List(Orvane::All);
  const auto count = [&](const char* call) {
    return std::count(redirection.calls.begin(), redirection.calls.end(), call);
  };
  EXPECT_GT(count("disable"), 0);
  EXPECT_EQ(count("revert null"), count("disable"));
  EXPECT_EQ(count("free"), count("load kernel32.dll 8"));
  EXPECT_FALSE(redirection.off);
}

// A call that asks nothing of Windows has no error to tell.
TEST_F(HostProcess, KeepsItsLastErrorWhileAListingIsAnsweredFromItsCache) {
  const FreshLibrary library;
  library.Host().List(Orvane::ByDevice);
  library.Host().List(Orvane::Registered);
  for (const int mode : {Orvane::ByDevice, Orvane::Registered}) {
    SetLastError(1234);
    library.Host().List(mode);
    EXPECT_EQ(GetLastError(), 1234u) << mode;
  }
}

// --- The console.

/// Takes what the process writes to its standard output and error, by C or by Windows, while it lives.
class WrittenOutput {
 public:
  WrittenOutput() {
    for (Stream& stream : m_streams) {
      std::fflush(stream.file);
      stream.former = _dup(stream.descriptor);
      const int file =
          _wopen(m_folder.Path(stream.name).c_str(), _O_CREAT | _O_WRONLY | _O_APPEND | _O_BINARY, _S_IWRITE);
      _dup2(file, stream.descriptor);
      _close(file);
      stream.ToWindows();
    }
  }
  ~WrittenOutput() { Restore(); }
  WrittenOutput(const WrittenOutput&) = delete;
  WrittenOutput& operator=(const WrittenOutput&) = delete;

  /// What was written until now, to output and then to error; nothing is taken any more.
  std::string Take() {
    Restore();
    return test::FileContent(m_folder.Path(m_streams[0].name)) + test::FileContent(m_folder.Path(m_streams[1].name));
  }

 private:
  struct Stream {
    const wchar_t* name;
    FILE* file;
    int descriptor;
    DWORD handle;
    int former = -1;

    /// Tells Windows what C has.
    void ToWindows() const { SetStdHandle(handle, reinterpret_cast<HANDLE>(_get_osfhandle(descriptor))); }
  };

  void Restore() {
    for (Stream& stream : m_streams) {
      if (stream.former < 0) continue;
      std::fflush(stream.file);
      _dup2(stream.former, stream.descriptor);
      _close(stream.former);
      stream.former = -1;
      stream.ToWindows();
    }
  }

  const test::TemporaryFolder m_folder;
  Stream m_streams[2] = {{L"output", stdout, 1, STD_OUTPUT_HANDLE}, {L"error", stderr, 2, STD_ERROR_HANDLE}};
};

TEST_F(HostProcess, WritesNothing) {
  std::string written;
  {
    WrittenOutput output;
    {
      const FreshLibrary library;
      for (const int mode : {Orvane::ByDevice, Orvane::Registered, Orvane::All}) library.Host().List(mode);
    }
    written = output.Take();
  }
  EXPECT_EQ(written, "");
}

TEST_F(HostProcess, WouldShowWhatIsWritten) {
  std::string written;
  {
    WrittenOutput output;
    std::fputs("to output, ", stdout);
    std::fflush(stdout);
    std::fputs(", to error", stderr);
    std::fflush(stderr);
    DWORD size = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), "by Windows", 10, &size, nullptr);
    written = output.Take();
  }
  EXPECT_EQ(written, "to output, by Windows, to error");
}

}  // namespace
