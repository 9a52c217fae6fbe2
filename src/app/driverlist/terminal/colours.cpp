#include "terminal/colours.h"

#include <windows.h>

#include <string_view>

#include "platform/handles.h"

namespace driverlist {
namespace {

using Orvane::FileHandle;

constexpr DWORD UnderstandsCodes = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING, of Windows 10
constexpr std::wstring_view PlainText = L"\x1B[0m";

/// By convention, any value but an empty one counts.
bool AreForbidden() { return GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) > 1; }

bool Write(HANDLE console, std::wstring_view text) {
  DWORD written = 0;
  return WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE;
}

/// Whether consoles of this machine act on codes. Wine's accepts the mode, but then counts codes as text, so that lines
/// break too early, even within a code. Tried on a screen buffer of its own, which nobody sees.
bool ConsolesActOnCodes() {
  const FileHandle screen(CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                    nullptr, CONSOLE_TEXTMODE_BUFFER, nullptr));
  CONSOLE_SCREEN_BUFFER_INFO before{};
  CONSOLE_SCREEN_BUFFER_INFO after{};
  DWORD mode = 0;
  return screen && GetConsoleMode(screen.get(), &mode) && SetConsoleMode(screen.get(), mode | UnderstandsCodes) &&
         GetConsoleScreenBufferInfo(screen.get(), &before) && Write(screen.get(), PlainText) &&
         GetConsoleScreenBufferInfo(screen.get(), &after) && after.dwCursorPosition.X == before.dwCursorPosition.X &&
         after.dwCursorPosition.Y == before.dwCursorPosition.Y;
}

}  // namespace

Colours::Colours(bool wanted) {
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  if (!wanted || AreForbidden() || !GetConsoleMode(console, &m_formerMode) || !ConsolesActOnCodes()) return;
  const Uninterrupted change;
  if (!SetConsoleMode(console, m_formerMode | UnderstandsCodes)) return;
  m_undoing.emplace([this] {
    Write(GetStdHandle(STD_OUTPUT_HANDLE), PlainText);
    Restore();
  });
}

Colours::~Colours() {
  // A terminal that has gone by now does not need its mode restored.
  if (AreOn()) Restore();
}

void Colours::Restore() const { SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), m_formerMode); }

}  // namespace driverlist
