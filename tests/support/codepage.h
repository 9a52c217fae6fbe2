/// @file
/// A machine whose ANSI code page is not UTF-8, as far as the conversions of this program go.
#pragma once

#include <windows.h>

#include "importhook.h"

namespace test {

/// While it lives, this program takes the ANSI code page for Windows-1252, whatever that of the machine is.
class WesternCodePage {
 private:
  static UINT Western(UINT codePage) { return codePage == CP_ACP ? 1252 : codePage; }

  HOOK(m_toWide, ThisProgram(), MultiByteToWideChar,
       [this](UINT codePage, DWORD flags, const char* text, int size, wchar_t* wide, int room) {
         return m_toWide.Real(Western(codePage), flags, text, size, wide, room);
       });
  HOOK(m_toNarrow, ThisProgram(), WideCharToMultiByte,
       [this](UINT codePage, DWORD flags, const wchar_t* wide, int size, char* text, int room, const char* other,
              BOOL* usedOther) {
         return m_toNarrow.Real(Western(codePage), flags, wide, size, text, room, other, usedOther);
       });
};

}  // namespace test
