#include "platformquirks.h"

#include <windows.h>

namespace Orvane {

bool SurvivesDamagedImages() {
  // Wine exports this function so that programs can recognise it; Windows does not have it.
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr;
}

}  // namespace Orvane
