/// @file
/// A console, and programs that run on it.
#pragma once

#include <windows.h>

#include <array>
#include <string>

#include "platform/handles.h"

namespace test {

/// Those of a process: input, output, errors.
using StandardHandles = std::array<HANDLE, 3>;

/// A console without a window, which is that of this process while it lives. The standard handles of the process stay
/// what they are.
class Console {
 public:
  /// Throws std::runtime_error where there can be no console.
  Console();
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// What is on its screen, without the blanks at the ends of its lines.
  std::string Screen() const;
  /// The mode of its output.
  DWORD Mode() const;
  /// How many columns and lines its window gets, and its screen with it.
  void Resize(SHORT columns, SHORT lines) const;

  /// Starts driverlist.exe on it: its output and its errors go there.
  Orvane::ProcessHandle StartDriverlist(const std::wstring& arguments) const;
  /// Interrupts the programs that run on it; from then on this process ignores interruptions.
  void PressCtrlC() const;

 private:
  /// A process that has the console until nothing more can come out of its input.
  Orvane::FileHandle m_keeperInput;
  Orvane::ProcessHandle m_keeper;
  /// The standard handles that came with it.
  StandardHandles m_handles{};
  Orvane::FileHandle m_output;
};

}  // namespace test
