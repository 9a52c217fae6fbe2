#include "terminal/colours.h"

#include <windows.h>

namespace driverlist {
namespace {

/// Set to anything, by convention; a variable that is empty forbids nothing.
bool AreForbidden() { return GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) > 1; }

}  // namespace

Colours::Colours(bool wanted) {
  constexpr DWORD understandsCodes = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING, of Windows 10
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  if (!wanted || AreForbidden() || !GetConsoleMode(console, &m_formerMode)) return;
  m_areOn = SetConsoleMode(console, m_formerMode | understandsCodes) != FALSE;
}

Colours::~Colours() {
  // A terminal that is gone by now needs no former mode.
  if (m_areOn) SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), m_formerMode);
}

}  // namespace driverlist
