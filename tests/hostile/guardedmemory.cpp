#include "guardedmemory.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>

#include "platform/handles.h"

namespace test {
namespace {

constexpr std::size_t PageSize = 4096;
constexpr DWORD Crashed = 0xC0000005;

std::size_t WholePages(std::size_t size) { return (size + PageSize - 1) / PageSize * PageSize; }

std::atomic<DWORD> threadThatMayCrash{0};

LONG WINAPI GiveUpThread(EXCEPTION_POINTERS* exception) {
  const bool isCrash = exception->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION;
  if (isCrash && GetCurrentThreadId() == threadThatMayCrash) ExitThread(Crashed);
  return EXCEPTION_CONTINUE_SEARCH;
}

DWORD WINAPI Act(void* act) {
  threadThatMayCrash = GetCurrentThreadId();
  (*static_cast<const std::function<void()>*>(act))();
  return 0;
}

}  // namespace

GuardedMemory::GuardedMemory(std::size_t largest)
    : m_largest(WholePages(largest)),
      m_begin(static_cast<char*>(VirtualAlloc(nullptr, m_largest + PageSize, MEM_RESERVE, PAGE_NOACCESS))),
      m_end(m_begin + m_largest) {
  // The page behind is reserved and never there.
  if (m_begin == nullptr || VirtualAlloc(m_begin, m_largest, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
    throw std::runtime_error("there is no memory to guard");
  }
}

GuardedMemory::~GuardedMemory() { VirtualFree(m_begin, 0, MEM_RELEASE); }

char* GuardedMemory::Zeros(std::size_t size) {
  if (size > m_largest) throw std::runtime_error("the guarded memory is smaller than that");
  std::fill(m_end - size, m_end, '\0');
  return m_end - size;
}

char* GuardedMemory::Put(const std::string& bytes) {
  char* const begin = Zeros(bytes.size());
  std::copy(bytes.begin(), bytes.end(), begin);
  return begin;
}

bool GuardedMemory::Holds(const void* address) const {
  const char* const byte = static_cast<const char*>(address);
  return !std::less<const char*>()(byte, m_begin) && !std::less<const char*>()(m_end, byte);
}

bool Crashes(const std::function<void()>& act) {
  void* const handler = AddVectoredExceptionHandler(1, &GiveUpThread);
  const Orvane::ProcessHandle thread(
      CreateThread(nullptr, 0, &Act, const_cast<std::function<void()>*>(&act), 0, nullptr));
  if (!thread) throw std::runtime_error("there is no thread to crash");
  WaitForSingleObject(thread.get(), INFINITE);
  DWORD code = 0;
  GetExitCodeThread(thread.get(), &code);
  RemoveVectoredExceptionHandler(handler);
  threadThatMayCrash = 0;
  return code == Crashed;
}

}  // namespace test
