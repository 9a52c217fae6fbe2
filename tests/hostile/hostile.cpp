#include "hostile.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace test {
namespace {

constexpr unsigned CrashCode = 3;
constexpr unsigned HangCode = 4;

// Of the running input; read where the process may have no heap left.
std::atomic<const char*> currentKind{""};
std::atomic<std::uint64_t> currentSeed{0};
std::atomic<std::chrono::steady_clock::rep> currentStart{0};

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  char text[32];
  const DWORD length = GetEnvironmentVariableA(name, text, sizeof(text));
  return length > 0 && length < sizeof(text) ? std::strtoull(text, nullptr, 10) : otherwise;
}

std::chrono::steady_clock::rep Now() { return std::chrono::steady_clock::now().time_since_epoch().count(); }

[[noreturn]] void EndProcess(unsigned code, const char* what) {
  char line[256];
  const int length = std::snprintf(line, sizeof(line), "hostile input: %s, seed %llu: %s\n", currentKind.load(),
                                   static_cast<unsigned long long>(currentSeed.load()), what);
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), line, static_cast<DWORD>(length), &written, nullptr);
  TerminateProcess(GetCurrentProcess(), code);
  std::abort();
}

LONG WINAPI TellCrash(EXCEPTION_POINTERS* exception) {
  char what[96];
  std::snprintf(what, sizeof(what), "exception %08lX at %p", exception->ExceptionRecord->ExceptionCode,
                exception->ExceptionRecord->ExceptionAddress);
  EndProcess(CrashCode, what);
}

}  // namespace

HostileBatch::HostileBatch(const char* kind, std::chrono::seconds patience)
    : m_size(static_cast<std::size_t>(Setting("DRIVERINFO_HOSTILE_INPUTS", 5000))),
      m_firstSeed(Setting("DRIVERINFO_HOSTILE_SEED", 1)),
      m_patience(patience) {
  currentKind = kind;
  currentStart = Now();
  SetUnhandledExceptionFilter(&TellCrash);
  std::set_terminate([] { EndProcess(CrashCode, "a C++ exception that nobody handles"); });
  m_watch = std::thread([this] { Watch(); });
}

HostileBatch::~HostileBatch() {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isOver = true;
  }
  m_over.notify_one();
  m_watch.join();
  m_trace.reset();
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
  std::printf("hostile input: %s: %zu inputs from seed %llu on, %.1f s\n", currentKind.load(), m_done,
              static_cast<unsigned long long>(m_firstSeed), elapsed.count());
  EXPECT_GT(m_done, 0u) << "a batch without inputs shows nothing";
}

Random HostileBatch::Begin(std::size_t index) {
  const std::uint64_t seed = m_firstSeed + index;
  currentSeed = seed;
  currentStart = Now();
  m_done = index + 1;
  m_trace.reset();
  m_trace.emplace(__FILE__, __LINE__, std::string(currentKind.load()) + ", seed " + std::to_string(seed));
  return Random(seed);
}

void HostileBatch::Watch() {
  std::unique_lock<std::mutex> lock(m_mutex);
  while (!m_over.wait_for(lock, std::chrono::milliseconds(200), [this] { return m_isOver; })) {
    if (std::chrono::steady_clock::duration(Now() - currentStart.load()) > m_patience) {
      EndProcess(HangCode, "does not come to an end");
    }
  }
}

}  // namespace test
