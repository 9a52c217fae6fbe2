/// @file
/// Files, directories, version resources, times, modules and texts of the system, as driverinfo.dll calls them.
#pragma once

#include <windows.h>
// After windows.h.
#include <sys/timeb.h>
#include <winternl.h>

#include <cerrno>
#include <ctime>
#include <string>

#include "faults.h"
#include "freshlibrary.h"
#include "importhook.h"
#include "remembered.h"

extern "C" NTSTATUS NTAPI NtQueryDirectoryFile(HANDLE file, HANDLE event, void* routine, void* context,
                                               IO_STATUS_BLOCK* status, void* entries, ULONG size, int kind,
                                               BOOLEAN single, UNICODE_STRING* mask, BOOLEAN restart);

namespace sweeps {

struct FilePlatform {
  FilePlatform(Faults& numbered, Remembered& answers) : faults(numbered), remembered(answers) {}
  FilePlatform(const FilePlatform&) = delete;
  FilePlatform& operator=(const FilePlatform&) = delete;

  Faults& faults;
  Remembered& remembered;
  /// What was opened last.
  HANDLE directory = nullptr;
  static constexpr NTSTATUS AccessDenied = static_cast<NTSTATUS>(0xC0000022);

  // --- Where things are.

  HOOK(system, Library(), GetSystemDirectoryA, [this](char* path, UINT size) -> UINT {
    if (faults.Hits("GetSystemDirectoryA", "", {ERROR_CALL_NOT_IMPLEMENTED})) return 0;
    return system.Real(path, size);
  });
  HOOK(windows, Library(), GetWindowsDirectoryA, [this](char* path, UINT size) -> UINT {
    if (faults.Hits("GetWindowsDirectoryA", "", {ERROR_CALL_NOT_IMPLEMENTED})) return 0;
    return windows.Real(path, size);
  });
  HOOK(systemWindows, Library(), GetSystemWindowsDirectoryA, [this](char* path, UINT size) -> UINT {
    if (faults.Hits("GetSystemWindowsDirectoryA", "", {ERROR_CALL_NOT_IMPLEMENTED})) return 0;
    return systemWindows.Real(path, size);
  });
  HOOK(expand, Library(), ExpandEnvironmentStringsA, [this](const char* source, char* target, DWORD size) -> DWORD {
    if (faults.Hits("ExpandEnvironmentStringsA", source, {ERROR_NOT_ENOUGH_MEMORY})) return 0;
    const DWORD length = expand.Real(source, target, size);
    if (length > 0) faults.Answer(target);
    return length;
  });

  // --- Finding files.

  HOOK(find, Library(), FindFirstFileA, [this](const char* path, WIN32_FIND_DATAA* data) -> HANDLE {
    if (faults.Hits("FindFirstFileA", path, {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED})) return INVALID_HANDLE_VALUE;
    const HANDLE found = faults.Opened("file search", find.Real(path, data));
    if (found != INVALID_HANDLE_VALUE) faults.Answer(path);
    return found;
  });
  HOOK(findClose, Library(), FindClose, [this](HANDLE search) -> BOOL {
    faults.Closed("file search", search);
    const BOOL closed = findClose.Real(search);
    return faults.Hits("FindClose", "", {ERROR_INVALID_HANDLE}) ? FALSE : closed;
  });
  HOOK(create, Library(), CreateFileW,
       [this](const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD creation,
              DWORD flags, HANDLE like) -> HANDLE {
         if (faults.Hits("CreateFileW", "", {ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED})) return INVALID_HANDLE_VALUE;
         directory = create.Real(path, access, share, security, creation, flags, like);
         return faults.Opened("file", directory);
       });
  // The file-system library reads directories through a function that it looks up when it is loaded, which leads here.
  HOOK(readDirectory, GetModuleHandleA("kernelbase.dll"), NtQueryDirectoryFile,
       [this](HANDLE file, HANDLE event, void* routine, void* context, IO_STATUS_BLOCK* status, void* entries,
              ULONG size, int kind, BOOLEAN single, UNICODE_STRING* mask, BOOLEAN restart) -> NTSTATUS {
         if (file == directory && faults.Hits("NtQueryDirectoryFile", "", {ERROR_ACCESS_DENIED})) return AccessDenied;
         return readDirectory.Real(file, event, routine, context, status, entries, size, kind, single, mask, restart);
       });
  HOOK(close, Library(), CloseHandle, [this](HANDLE handle) -> BOOL {
    faults.Closed("file", handle);
    const BOOL closed = close.Real(handle);
    return faults.Hits("CloseHandle", "", {ERROR_INVALID_HANDLE}) ? FALSE : closed;
  });
  HOOK(wide, Library(), MultiByteToWideChar,
       [this](UINT codePage, DWORD flags, const char* from, int size, wchar_t* to, int room) -> int {
         if (faults.Hits("MultiByteToWideChar", "", {ERROR_NO_UNICODE_TRANSLATION, ERROR_INSUFFICIENT_BUFFER}))
           return 0;
         return wide.Real(codePage, flags, from, size, to, room);
       });
  HOOK(narrow, Library(), WideCharToMultiByte,
       [this](UINT codePage, DWORD flags, const wchar_t* from, int size, char* to, int room, const char* unknown,
              BOOL* used) -> int {
         if (faults.Hits("WideCharToMultiByte", "", {ERROR_NO_UNICODE_TRANSLATION, ERROR_INSUFFICIENT_BUFFER}))
           return 0;
         return narrow.Real(codePage, flags, from, size, to, room, unknown, used);
       });

  // --- Version resources.

  HOOK(versionSize, Library(), GetFileVersionInfoSizeA, [this](const char* path, DWORD* handle) -> DWORD {
    if (faults.Hits("GetFileVersionInfoSizeA", path, {ERROR_RESOURCE_DATA_NOT_FOUND, ERROR_SHARING_VIOLATION}))
      return 0;
    return remembered.VersionSize(path, [&] { return versionSize.Real(path, handle); });
  });
  HOOK(version, Library(), GetFileVersionInfoA, [this](const char* path, DWORD handle, DWORD size, void* data) -> BOOL {
    if (faults.Hits("GetFileVersionInfoA", path, {ERROR_RESOURCE_DATA_NOT_FOUND, ERROR_SHARING_VIOLATION}))
      return FALSE;
    return remembered.Version(path, data, size, [&] { return version.Real(path, handle, size, data); });
  });
  HOOK(versionValue, Library(), VerQueryValueA,
       [this](const void* block, const char* path, void** value, UINT* length) -> BOOL {
         if (faults.Hits("VerQueryValueA", path, {ERROR_RESOURCE_TYPE_NOT_FOUND})) return FALSE;
         return versionValue.Real(block, path, value, length);
       });

  // --- Times.

  HOOK(systemTime, Library(), FileTimeToSystemTime, [this](const FILETIME* from, SYSTEMTIME* to) -> BOOL {
    if (faults.Hits("FileTimeToSystemTime", "", {ERROR_INVALID_PARAMETER})) return FALSE;
    return systemTime.Real(from, to);
  });
  HOOK(localTime, Library(), SystemTimeToTzSpecificLocalTime,
       [this](const TIME_ZONE_INFORMATION* inZone, const SYSTEMTIME* from, SYSTEMTIME* to) -> BOOL {
         if (faults.Hits("SystemTimeToTzSpecificLocalTime", "", {ERROR_INVALID_PARAMETER})) return FALSE;
         return localTime.Real(inZone, from, to);
       });
  HOOK(makeTime, Library(), _mktime64, [this](std::tm* time) -> __time64_t {
    if (faults.Hits("_mktime64", "", {ERROR_SUCCESS})) return -1;
    return makeTime.Real(time);
  });
  HOOK(brokenDown, Library(), _localtime64, [this](const __time64_t* time) -> std::tm* {
    if (faults.Hits("_localtime64", "", {ERROR_SUCCESS})) return nullptr;
    return brokenDown.Real(time);
  });
  HOOK(zone, Library(), _ftime64_s, [this](struct __timeb64* time) -> errno_t {
    if (faults.Hits("_ftime64_s", "", {ERROR_SUCCESS})) return EINVAL;
    return zone.Real(time);
  });

  // --- Modules, the version of Windows, texts.

  HOOK(load, Library(), LoadLibraryExA, [this](const char* name, HANDLE file, DWORD flags) -> HMODULE {
    if (faults.Hits("LoadLibraryExA", name, {ERROR_MOD_NOT_FOUND})) return nullptr;
    return faults.Opened("module", load.Real(name, file, flags));
  });
  HOOK(lookUp, Library(), GetProcAddress, [this](HMODULE module, const char* name) -> FARPROC {
    if (faults.Hits("GetProcAddress", name, {ERROR_PROC_NOT_FOUND})) return nullptr;
    return lookUp.Real(module, name);
  });
  HOOK(unload, Library(), FreeLibrary, [this](HMODULE module) -> BOOL {
    // The library frees what it loaded, also when that is nothing.
    if (module != nullptr) faults.Closed("module", module);
    const BOOL freed = unload.Real(module);
    return faults.Hits("FreeLibrary", "", {ERROR_INVALID_HANDLE}) ? FALSE : freed;
  });
  HOOK(windowsVersion, Library(), GetVersionExA, [this](OSVERSIONINFOA* info) -> BOOL {
    if (faults.Hits("GetVersionExA", "", {ERROR_INSUFFICIENT_BUFFER})) return FALSE;
    return windowsVersion.Real(info);
  });
  HOOK(message, Library(), FormatMessageA,
       [this](DWORD flags, const void* source, DWORD id, DWORD language, char* text, DWORD size,
              va_list* arguments) -> DWORD {
         if (faults.Hits("FormatMessageA", "", {ERROR_MR_MID_NOT_FOUND, ERROR_NOT_ENOUGH_MEMORY})) return 0;
         const DWORD length = message.Real(flags, source, id, language, text, size, arguments);
         if (length > 0) faults.Opened("message", *reinterpret_cast<char**>(text));
         return length;
       });
  // By the file-system library, for what it throws.
  HOOK(wideMessage, Library(), FormatMessageW,
       [this](DWORD flags, const void* source, DWORD id, DWORD language, wchar_t* text, DWORD size,
              va_list* arguments) -> DWORD {
         if (faults.Hits("FormatMessageW", "", {ERROR_MR_MID_NOT_FOUND, ERROR_NOT_ENOUGH_MEMORY})) return 0;
         const DWORD length = wideMessage.Real(flags, source, id, language, text, size, arguments);
         if (length > 0) faults.Opened("message", *reinterpret_cast<wchar_t**>(text));
         return length;
       });
  HOOK(freeLocal, Library(), LocalFree, [this](HLOCAL memory) -> HLOCAL {
    if (memory != nullptr) faults.Closed("message", memory);
    const HLOCAL left = freeLocal.Real(memory);
    return faults.Hits("LocalFree", "", {ERROR_INVALID_HANDLE}) ? memory : left;
  });
};

}  // namespace sweeps
