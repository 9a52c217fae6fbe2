#include "output.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <string_view>

#include "unicode.h"

namespace driverlist {
namespace {

/// Zero, or the error of Windows.
DWORD WriteBytes(HANDLE file, const std::string& text) {
  constexpr std::size_t chunk = 1 << 20;
  for (std::size_t at = 0; at < text.size();) {
    DWORD written = 0;
    if (!WriteFile(file, text.data() + at, static_cast<DWORD>(std::min(chunk, text.size() - at)), &written, nullptr)) {
      return GetLastError();
    }
    if (written == 0) return ERROR_DISK_FULL;
    at += written;
  }
  return ERROR_SUCCESS;
}

DWORD WriteConsoleText(HANDLE console, const std::string& text) {
  // A console takes 64 KiB at a time at most.
  constexpr std::size_t chunk = 8192;
  const std::wstring wide = WideFromUtf8(text);
  for (std::size_t at = 0; at < wide.size(); at += chunk) {
    DWORD written = 0;
    const auto count = static_cast<DWORD>(std::min(chunk, wide.size() - at));
    if (!WriteConsoleW(console, wide.data() + at, count, &written, nullptr)) return GetLastError();
  }
  return ERROR_SUCCESS;
}

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != FALSE;
}

DWORD WriteStandard(DWORD which, const std::string& text) {
  const HANDLE handle = GetStdHandle(which);
  return IsConsole(handle) ? WriteConsoleText(handle, text) : WriteBytes(handle, text);
}

std::size_t WidthBehind(DWORD which) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(GetStdHandle(which), &info)) return 0;
  return static_cast<std::size_t>(std::max(1, info.srWindow.Right - info.srWindow.Left));
}

std::string Problem(DWORD error) { return error == ERROR_SUCCESS ? std::string() : ErrorText(error); }

HANDLE OpenToWrite(const std::wstring& path, DWORD disposition) {
  return CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// Zero, or the error of Windows.
DWORD WriteNewFile(const std::wstring& path, const std::string& text) {
  const HANDLE file = OpenToWrite(path, CREATE_ALWAYS);
  if (file == INVALID_HANDLE_VALUE) return GetLastError();
  DWORD error = WriteBytes(file, text);
  if (error == ERROR_SUCCESS && !FlushFileBuffers(file)) error = GetLastError();
  if (!CloseHandle(file) && error == ERROR_SUCCESS) error = GetLastError();
  return error;
}

// A draft of "list.csv" is "list.csv.driverlist-1234.tmp", where 1234 is the process that writes it.
constexpr wchar_t DraftPrefix[] = L".driverlist-";
constexpr wchar_t DraftSuffix[] = L".tmp";

bool IsRunning(DWORD processId) {
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, processId);
  if (process == nullptr) return GetLastError() != ERROR_INVALID_PARAMETER;
  // A process that ended is still there while someone holds it.
  const bool isRunning = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
  CloseHandle(process);
  return isRunning;
}

/// The process in the name of a draft; 0, which writes none, for any other name.
DWORD WriterOf(const std::wstring& draft, std::size_t numberAt) {
  wchar_t* end = nullptr;
  const unsigned long id = std::wcstoul(draft.c_str() + std::min(numberAt, draft.size()), &end, 10);
  return std::wstring_view(end) == DraftSuffix ? id : 0;
}

/// Removes the drafts that processes left which were ended while they wrote. What cannot be removed stays.
void RemoveStaleDrafts(const std::wstring& path) {
  const std::wstring prefix = path + DraftPrefix;
  const std::size_t name = path.find_last_of(L"\\/:") + 1;
  WIN32_FIND_DATAW file;
  const HANDLE found = FindFirstFileW((prefix + L"*" + DraftSuffix).c_str(), &file);
  if (found == INVALID_HANDLE_VALUE) return;
  do {
    const DWORD writer = WriterOf(file.cFileName, prefix.size() - name);
    if (writer != 0 && !IsRunning(writer)) DeleteFileW((path.substr(0, name) + file.cFileName).c_str());
  } while (FindNextFileW(found, &file));
  FindClose(found);
}

/// Zero, or the error of Windows.
DWORD WriteAsideAndReplace(const std::wstring& path, const std::string& text) {
  RemoveStaleDrafts(path);
  const std::wstring draft = path + DraftPrefix + std::to_wstring(GetCurrentProcessId()) + DraftSuffix;
  DWORD error = WriteNewFile(draft, text);
  if (error == ERROR_SUCCESS && !MoveFileExW(draft.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) {
    error = GetLastError();
  }
  if (error != ERROR_SUCCESS) DeleteFileW(draft.c_str());
  return error;
}

/// The device that `path` names, opened; none when it names a file or nothing.
HANDLE OpenDevice(const std::wstring& path) {
  const HANDLE opened = OpenToWrite(path, OPEN_EXISTING);
  if (opened == INVALID_HANDLE_VALUE || GetFileType(opened) != FILE_TYPE_DISK) return opened;
  CloseHandle(opened);
  return INVALID_HANDLE_VALUE;
}

}  // namespace

std::size_t TerminalWidth() { return WidthBehind(STD_OUTPUT_HANDLE); }

std::size_t StandardErrorWidth() { return WidthBehind(STD_ERROR_HANDLE); }

std::string WriteStandardOutput(const std::string& text) { return Problem(WriteStandard(STD_OUTPUT_HANDLE, text)); }

void WriteStandardError(const std::string& text) { WriteStandard(STD_ERROR_HANDLE, text); }

std::string WriteFileWhole(const std::string& path, const std::string& text) {
  const std::wstring target = WideFromUtf8(path);
  const HANDLE device = OpenDevice(target);
  if (device == INVALID_HANDLE_VALUE) return Problem(WriteAsideAndReplace(target, text));
  const DWORD error = WriteBytes(device, text);
  CloseHandle(device);
  return Problem(error);
}

}  // namespace driverlist
