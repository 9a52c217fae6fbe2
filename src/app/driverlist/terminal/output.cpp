#include "terminal/output.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <string_view>

#include "platform/encoding.h"
#include "platform/handles.h"
#include "terminal/interruption.h"

namespace driverlist {
namespace {

using Orvane::FileHandle;
using Orvane::FindHandle;
using Orvane::ProcessHandle;
using Orvane::WideFromUtf8;

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

/// How much of `text`, which is not empty, to write to a console at once: at most 64 KiB, and only whole characters.
std::size_t ConsoleChunk(std::wstring_view text) {
  constexpr std::size_t most = 8192;
  if (text.size() <= most) return text.size();
  return IS_HIGH_SURROGATE(text[most - 1]) ? most - 1 : most;
}

DWORD WriteConsoleText(HANDLE console, const std::string& text) {
  const std::wstring wide = WideFromUtf8(text);
  for (std::wstring_view left = wide; !left.empty();) {
    const std::size_t count = ConsoleChunk(left);
    DWORD written = 0;
    // An interrupted process ends its output with the codes that restore the terminal.
    const Uninterrupted chunk;
    if (!WriteConsoleW(console, left.data(), static_cast<DWORD>(count), &written, nullptr)) return GetLastError();
    left.remove_prefix(count);
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

std::string Problem(DWORD error) { return error == ERROR_SUCCESS ? std::string() : Orvane::ErrorText(error); }

FileHandle OpenToWrite(const std::wstring& path, DWORD share, DWORD disposition) {
  return FileHandle(
      CreateFileW(path.c_str(), GENERIC_WRITE, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// Zero, or the error of Windows.
DWORD WriteNewFile(const std::wstring& path, const std::string& text) {
  // Shared, so that an interruption can delete it.
  FileHandle file = OpenToWrite(path, FILE_SHARE_DELETE, CREATE_ALWAYS);
  if (!file) return GetLastError();
  DWORD error = WriteBytes(file.get(), text);
  if (error == ERROR_SUCCESS && !FlushFileBuffers(file.get())) error = GetLastError();
  // Closed explicitly: a network drive may report only now that it is full.
  if (!CloseHandle(file.release()) && error == ERROR_SUCCESS) error = GetLastError();
  return error;
}

// A draft of "list.csv" is "list.csv.driverlist-1234.tmp", where 1234 is the process that writes it.
constexpr wchar_t DraftPrefix[] = L".driverlist-";
constexpr wchar_t DraftSuffix[] = L".tmp";

bool IsRunning(DWORD processId) {
  const ProcessHandle process(OpenProcess(SYNCHRONIZE, FALSE, processId));
  if (!process) return GetLastError() != ERROR_INVALID_PARAMETER;
  // A process that has ended still exists while someone holds a handle to it.
  return WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT;
}

/// The identifier of the process in the name of a draft; 0, which no writing process has, for any other name.
DWORD WriterOf(const std::wstring& draft, std::size_t numberAt) {
  wchar_t* end = nullptr;
  const unsigned long id = std::wcstoul(draft.c_str() + std::min(numberAt, draft.size()), &end, 10);
  return std::wstring_view(end) == DraftSuffix ? id : 0;
}

/// Removes the drafts of processes that ended while writing. Those that cannot be removed stay.
void RemoveStaleDrafts(const std::wstring& path) {
  const std::wstring prefix = path + DraftPrefix;
  const std::size_t name = path.find_last_of(L"\\/:") + 1;
  WIN32_FIND_DATAW file;
  const FindHandle found(FindFirstFileW((prefix + L"*" + DraftSuffix).c_str(), &file));
  if (!found) return;
  do {
    const DWORD writer = WriterOf(file.cFileName, prefix.size() - name);
    // A draft that cannot be deleted is left to the next call.
    if (writer != 0 && !IsRunning(writer)) DeleteFileW((path.substr(0, name) + file.cFileName).c_str());
  } while (FindNextFileW(found.get(), &file));
}

/// Zero, or the error of Windows.
DWORD WriteAsideAndReplace(const std::wstring& path, const std::string& text) {
  RemoveStaleDrafts(path);
  const std::wstring draft = path + DraftPrefix + std::to_wstring(GetCurrentProcessId()) + DraftSuffix;
  const UndoneWhenInterrupted undoing([&draft] { DeleteFileW(draft.c_str()); });
  DWORD error = WriteNewFile(draft, text);
  if (error == ERROR_SUCCESS && !MoveFileExW(draft.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) {
    error = GetLastError();
  }
  // The first error is what the user needs to know; the next call tries again to delete the draft.
  if (error != ERROR_SUCCESS) DeleteFileW(draft.c_str());
  return error;
}

/// Opens the device called `path`; empty if it is a file or does not exist.
FileHandle OpenDevice(const std::wstring& path) {
  FileHandle opened = OpenToWrite(path, 0, OPEN_EXISTING);
  if (opened && GetFileType(opened.get()) == FILE_TYPE_DISK) opened.reset();
  return opened;
}

}  // namespace

std::size_t TerminalWidth() { return WidthBehind(STD_OUTPUT_HANDLE); }

std::size_t StandardErrorWidth() { return WidthBehind(STD_ERROR_HANDLE); }

std::string WriteStandardOutput(const std::string& text) { return Problem(WriteStandard(STD_OUTPUT_HANDLE, text)); }

void WriteStandardError(const std::string& text) { WriteStandard(STD_ERROR_HANDLE, text); }

bool IsFolder(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::string WriteFileWhole(const std::string& path, const std::string& text) {
  const std::wstring target = WideFromUtf8(path);
  // Windows would only say that access is denied.
  if (IsFolder(target)) return "it is a folder.";
  const FileHandle device = OpenDevice(target);
  return Problem(device ? WriteBytes(device.get(), text) : WriteAsideAndReplace(target, text));
}

}  // namespace driverlist
