#include "terminal/interruption.h"

#include <windows.h>

#include <chrono>
#include <mutex>
#include <utility>

namespace driverlist {
namespace {

using Mutex = std::recursive_timed_mutex;

Mutex& UndoMutex() {
  static Mutex mutex;
  return mutex;
}

UndoneWhenInterrupted* innermost = nullptr;

/// The exit code that Windows gives to a process that has no handler of its own.
constexpr UINT InterruptedCode = 0xC000013A;

/// Windows calls it on a new thread.
BOOL WINAPI End(DWORD event) {
  // Logging off and shutting down are left to Windows: services are told about the logoff of every user.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && event != CTRL_CLOSE_EVENT) return FALSE;
  std::unique_lock<Mutex> lock(UndoMutex(), std::defer_lock);
  // A thread that hangs in a write to the terminal keeps it for ever.
  constexpr std::chrono::seconds patience(1);
  if (lock.try_lock_for(patience)) UndoneWhenInterrupted::UndoAll();
  // Not ExitProcess: it would run the clean-up of modules on data that interrupted threads have left half changed.
  TerminateProcess(GetCurrentProcess(), InterruptedCode);
  return TRUE;
}

}  // namespace

void EndCleanlyWhenInterrupted() { SetConsoleCtrlHandler(&End, TRUE); }

UndoneWhenInterrupted::UndoneWhenInterrupted(std::function<void()> undo) : m_undo(std::move(undo)) {
  const Uninterrupted now;
  m_outer = std::exchange(innermost, this);
}

UndoneWhenInterrupted::~UndoneWhenInterrupted() {
  const Uninterrupted now;
  innermost = m_outer;
}

void UndoneWhenInterrupted::UndoAll() {
  for (const UndoneWhenInterrupted* one = innermost; one != nullptr; one = one->m_outer) one->m_undo();
}

Uninterrupted::Uninterrupted() { UndoMutex().lock(); }

Uninterrupted::~Uninterrupted() { UndoMutex().unlock(); }

}  // namespace driverlist
