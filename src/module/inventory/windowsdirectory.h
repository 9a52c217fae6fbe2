/// @file
/// Where Windows is.
#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace inventory {

/// Such as "C:\windows"; empty if the system does not report it.
inline std::wstring WindowsDirectory() {
  std::array<wchar_t, MAX_PATH> path{};
  const UINT length = GetSystemWindowsDirectoryW(path.data(), MAX_PATH);
  return length < MAX_PATH ? std::wstring(path.data(), length) : std::wstring();
}

}  // namespace inventory
