/// @file
/// A terminal in the place of a standard handle, for parts of driverlist that run in the test's own process.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "importhook.h"
#include "platform/encoding.h"

namespace driverlist {

/// What a console makes of colour codes.
enum class Codes { Understood, Refused, TakenForText };

/// While it lives, the handle GetStdHandle(`standardHandle`) is a terminal of `width` columns, and no other handle is
/// but those of screens that are created.
class ScriptedTerminal {
 public:
  ScriptedTerminal(DWORD standardHandle, SHORT width, Codes codes = Codes::Understood)
      : m_standardHandle(standardHandle), m_width(width), m_codes(codes) {}

  /// Every text written to it, in UTF-8.
  const std::vector<std::string>& Written() const { return m_written; }
  /// All of them, one after the other.
  std::string Text() const {
    std::string text;
    for (const std::string& part : m_written) text += part;
    return text;
  }
  /// The modes that it got, in their order; before, it is in mode 3.
  const std::vector<DWORD>& Modes() const { return m_modes; }
  /// Screens that were created and not closed.
  std::size_t Screens() const { return m_screens.size(); }

 private:
  bool IsThis(HANDLE handle) const { return handle == GetStdHandle(m_standardHandle); }
  bool IsScreen(HANDLE handle) const { return m_screens.count(handle) > 0; }

  DWORD m_standardHandle;
  SHORT m_width;
  Codes m_codes;
  std::vector<std::string> m_written;
  std::vector<DWORD> m_modes;
  /// Where the cursor of each is.
  std::map<HANDLE, COORD> m_screens;

  HOOK(m_info, test::ThisProgram(), GetConsoleScreenBufferInfo,
       [this](HANDLE handle, CONSOLE_SCREEN_BUFFER_INFO* buffer) -> BOOL {
         buffer->srWindow = {0, 0, static_cast<SHORT>(m_width - 1), 24};
         if (IsScreen(handle)) buffer->dwCursorPosition = m_screens[handle];
         return IsThis(handle) || IsScreen(handle);
       });
  HOOK(m_mode, test::ThisProgram(), GetConsoleMode, [this](HANDLE handle, DWORD* mode) -> BOOL {
    *mode = 3;
    return IsThis(handle) || IsScreen(handle);
  });
  HOOK(m_setMode, test::ThisProgram(), SetConsoleMode, [this](HANDLE handle, DWORD mode) -> BOOL {
    constexpr DWORD understandsCodes = 4;
    if (m_codes == Codes::Refused && (mode & understandsCodes) != 0) return FALSE;
    if (IsThis(handle)) m_modes.push_back(mode);
    return TRUE;
  });
  HOOK(m_createScreen, test::ThisProgram(), CreateConsoleScreenBuffer,
       [this](DWORD, DWORD, const SECURITY_ATTRIBUTES*, DWORD, void*) -> HANDLE {
         return m_screens.emplace(CreateEventW(nullptr, FALSE, FALSE, nullptr), COORD{0, 0}).first->first;
       });
  HOOK(m_close, test::ThisProgram(), CloseHandle, [this](HANDLE handle) -> BOOL {
    m_screens.erase(handle);
    return m_close.Real(handle);
  });
  HOOK(m_write, test::ThisProgram(), WriteConsoleW,
       [this](HANDLE handle, const void* text, DWORD length, DWORD* count, void*) -> BOOL {
         *count = length;
         const bool isMoved = m_codes != Codes::Understood;
         if (IsScreen(handle)) {
           m_screens[handle].X = static_cast<SHORT>(isMoved ? length : 0);
         } else {
           m_written.push_back(Orvane::Utf8FromWide({static_cast<const wchar_t*>(text), length}));
         }
         return TRUE;
       });
};

}  // namespace driverlist
