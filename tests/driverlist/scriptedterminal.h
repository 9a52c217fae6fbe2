/// @file
/// A terminal in the place of a standard handle, for parts of driverlist that run in the test's own process.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "importhook.h"
#include "platform/encoding.h"

namespace driverlist {

/// While it lives, the handle GetStdHandle(`standardHandle`) is a terminal of `width` columns, and no other handle is.
class ScriptedTerminal {
 public:
  ScriptedTerminal(DWORD standardHandle, SHORT width) : m_standardHandle(standardHandle), m_width(width) {}

  /// Every text written to it, in UTF-8.
  const std::vector<std::string>& Written() const { return m_written; }
  /// All of them, one after the other.
  std::string Text() const {
    std::string text;
    for (const std::string& part : m_written) text += part;
    return text;
  }

 private:
  bool IsThis(HANDLE handle) const { return handle == GetStdHandle(m_standardHandle); }

  DWORD m_standardHandle;
  SHORT m_width;
  std::vector<std::string> m_written;

  HOOK(m_info, test::ThisProgram(), GetConsoleScreenBufferInfo,
       [this](HANDLE handle, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
         buffer->srWindow = {0, 0, static_cast<SHORT>(m_width - 1), 24};
         return IsThis(handle);
       });
  HOOK(m_mode, test::ThisProgram(), GetConsoleMode, [this](HANDLE handle, DWORD* mode) -> BOOL {
    *mode = 0;
    return IsThis(handle);
  });
  HOOK(m_setMode, test::ThisProgram(), SetConsoleMode, [](HANDLE, DWORD) -> BOOL { return TRUE; });
  HOOK(m_write, test::ThisProgram(), WriteConsoleW,
       [this](HANDLE, const void* text, DWORD length, DWORD* count, void*) -> BOOL {
         m_written.push_back(Orvane::Utf8FromWide({static_cast<const wchar_t*>(text), length}));
         *count = length;
         return TRUE;
       });
};

}  // namespace driverlist
