#include "platformquirks.h"

#include <windows.h>

namespace Orvane {

bool SurvivesDamagedImages() {
  // Wine has this function for programs that ask; Windows does not.
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr;
}

}  // namespace Orvane
