#include "input.h"

#include <windows.h>

#include <vector>

#include "unicode.h"

namespace driverlist {
namespace {

/// Zero, or the error of Windows.
DWORD ReadToEnd(HANDLE file, std::string& text) {
  std::vector<char> chunk(1 << 20);
  for (;;) {
    DWORD read = 0;
    if (!ReadFile(file, chunk.data(), static_cast<DWORD>(chunk.size()), &read, nullptr)) return GetLastError();
    if (read == 0) return ERROR_SUCCESS;
    text.append(chunk.data(), read);
  }
}

}  // namespace

std::string ReadFileWhole(const std::string& path, std::string& text) {
  constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = CreateFileW(WideFromUtf8(path).c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return ErrorText(GetLastError());
  text.clear();
  const DWORD error = ReadToEnd(file, text);
  CloseHandle(file);
  return error == ERROR_SUCCESS ? std::string() : ErrorText(error);
}

}  // namespace driverlist
