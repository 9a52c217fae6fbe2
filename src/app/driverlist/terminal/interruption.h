/// @file
/// What happens when the user presses Ctrl+C or Ctrl+Break, or closes the terminal: an interruption.
#pragma once

#include <functional>

namespace driverlist {

/// From now on, an interruption calls what UndoneWhenInterrupted objects registered, the latest first, and ends the
/// process at once with the usual exit code, STATUS_CONTROL_C_EXIT. It does not ask the process to stop, because a
/// listing of the library cannot be stopped. If another thread is stuck in writing to the terminal, it gives up after a
/// second and undoes nothing.
void EndCleanlyWhenInterrupted();

/// While it lives, an interruption calls `undo`, on a thread of its own.
class UndoneWhenInterrupted {
 public:
  explicit UndoneWhenInterrupted(std::function<void()> undo);
  ~UndoneWhenInterrupted();
  UndoneWhenInterrupted(const UndoneWhenInterrupted&) = delete;
  UndoneWhenInterrupted& operator=(const UndoneWhenInterrupted&) = delete;

  /// Calls them all, the latest first, as an interruption does.
  static void UndoAll();

 private:
  std::function<void()> m_undo;
  UndoneWhenInterrupted* m_outer;
};

/// While it lives, no interruption undoes anything, and other threads wait if they want one too. For actions that must
/// not happen while something is undone, or after that.
class Uninterrupted {
 public:
  Uninterrupted();
  ~Uninterrupted();
  Uninterrupted(const Uninterrupted&) = delete;
  Uninterrupted& operator=(const Uninterrupted&) = delete;
};

}  // namespace driverlist
