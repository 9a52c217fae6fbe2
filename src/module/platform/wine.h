/// @file
/// Whether this is Windows. Only for what cannot be found out without ending the process.
#pragma once

#include <windows.h>

namespace Orvane {

/// Wine exports this function so that programs can recognise it; Windows does not have it.
inline bool IsWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

}  // namespace Orvane
