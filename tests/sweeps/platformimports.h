/// @file
/// What driverinfo.dll imports from the platform, and whether a sweep lets it fail.
#pragma once

#include <set>
#include <string>

namespace sweeps {

/// Functions that a sweep lets fail.
inline const std::set<std::string> Swept = {
    // Services and registry.
    "CloseServiceHandle", "EnumServicesStatusA", "OpenSCManagerA", "OpenServiceA", "QueryServiceConfigA",
    "RegOpenKeyExA", "RegQueryValueExA",
    // Packages.
    "GetVersionExA", "SetupCloseInfFile", "SetupFindFirstLineA", "SetupFindNextLine", "SetupGetFieldCount",
    "SetupGetInfInformationA", "SetupGetLineTextA", "SetupGetStringFieldA", "SetupOpenInfFileA",
    "SetupQueryInfOriginalFileInformationA",
    // Files and directories.
    "CloseHandle", "CreateFileW", "ExpandEnvironmentStringsA", "FindClose", "FindFirstFileA", "GetSystemDirectoryA",
    "GetSystemWindowsDirectoryA", "GetWindowsDirectoryA", "MultiByteToWideChar", "WideCharToMultiByte",
    // Images and times.
    "FileTimeToSystemTime", "GetFileVersionInfoA", "GetFileVersionInfoSizeA", "SystemTimeToTzSpecificLocalTime",
    "VerQueryValueA",
    // Modules and texts.
    "FormatMessageA", "FormatMessageW", "FreeLibrary", "GetProcAddress", "LoadLibraryExA", "LocalFree"};

/// Functions that cannot fail where the library calls them, the locks of the compiler's run-time library, without which
/// nothing runs, and those of memory, which the allocation sweep lets fail.
inline const std::set<std::string> CannotFail = {"AreFileApisANSI",
                                                 "DeleteCriticalSection",
                                                 "EnterCriticalSection",
                                                 "GetLastError",
                                                 "GetModuleHandleW",
                                                 "GetSystemInfo",
                                                 "InitializeCriticalSection",
                                                 "LeaveCriticalSection",
                                                 "SetLastError",
                                                 "Sleep",
                                                 "TlsGetValue",
                                                 "VirtualAlloc",
                                                 "VirtualFree",
                                                 "VirtualProtect",
                                                 "VirtualQuery"};

/// Functions that the file-system library has for what no listing does. The test shows that none calls them.
inline const std::set<std::string> NeverCalled = {
    "CopyFileExW",          "CreateDirectoryExW",  "CreateDirectoryW",
    "DeleteFileW",          "DeviceIoControl",     "FlushFileBuffers",
    "GetCurrentDirectoryW", "GetDiskFreeSpaceExW", "GetEnvironmentVariableW",
    "GetFileAttributesExW", "GetFileAttributesW",  "GetFileInformationByHandle",
    "GetFileTime",          "GetFullPathNameW",    "GetWindowsDirectoryW",
    "IsDBCSLeadByteEx",     "MoveFileExW",         "RemoveDirectoryW",
    "SetCurrentDirectoryW", "SetEndOfFile",        "SetFileAttributesW",
    "SetFilePointerEx",     "SetFileTime"};

}  // namespace sweeps
