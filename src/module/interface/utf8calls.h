/// @file
/// The narrow calls of Windows, in UTF-8 whatever the code page of the process.
///
/// The listing library and the device inventory use the narrow calls, which use the code page of the process. The
/// manifest of our own program makes that UTF-8, but driverinventory.dll is loaded into foreign processes, where a
/// driver whose name is outside the code page would not even be found. This header is included before everything else
/// in those sources, and replaces each narrow call that carries text with a UTF-16 call. Each replacement behaves like
/// the narrow call does when the code page is UTF-8.
#pragma once

#include <windows.h>
// After windows.h.
#include <setupapi.h>
#include <winsvc.h>
#include <winver.h>

namespace Orvane::narrow {

UINT GetSystemDirectoryUtf8(char* buffer, UINT size);
UINT GetWindowsDirectoryUtf8(char* buffer, UINT size);
UINT GetSystemWindowsDirectoryUtf8(char* buffer, UINT size);
DWORD ExpandEnvironmentStringsUtf8(const char* source, char* buffer, DWORD size);
/// The name in `data` is cut if it does not fit.
HANDLE FindFirstFileUtf8(const char* path, WIN32_FIND_DATAA* data);

LSTATUS RegOpenKeyExUtf8(HKEY key, const char* subKey, DWORD options, REGSAM access, HKEY* opened);
/// `buffer` and `size` are not null.
LSTATUS RegQueryValueExUtf8(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* buffer, DWORD* size);

/// `size` may be too large if `services` is null.
BOOL EnumServicesStatusUtf8(SC_HANDLE manager, DWORD type, DWORD state, ENUM_SERVICE_STATUSA* services,
                            DWORD bufferSize, DWORD* needed, DWORD* count, DWORD* resume);
SC_HANDLE OpenServiceUtf8(SC_HANDLE manager, const char* name, DWORD access);
/// Of the texts, only the image path is filled in.
BOOL QueryServiceConfigUtf8(SC_HANDLE service, QUERY_SERVICE_CONFIGA* config, DWORD bufferSize, DWORD* needed);

DWORD GetFileVersionInfoSizeUtf8(const char* path, DWORD* handle);
BOOL GetFileVersionInfoUtf8(const char* path, DWORD handle, DWORD size, void* block);
/// A text lives until the next call.
BOOL VerQueryValueUtf8(const void* block, const char* path, void** value, UINT* length);

BOOL SetupDiGetDeviceInstanceIdUtf8(HDEVINFO set, SP_DEVINFO_DATA* device, char* buffer, DWORD size, DWORD* needed);
BOOL SetupDiGetDeviceRegistryPropertyUtf8(HDEVINFO set, SP_DEVINFO_DATA* device, DWORD property, DWORD* type,
                                          BYTE* buffer, DWORD size, DWORD* needed);

HINF SetupOpenInfFileUtf8(const char* path, const char* infClass, DWORD style, UINT* errorLine);
BOOL SetupFindFirstLineUtf8(HINF inf, const char* section, const char* key, INFCONTEXT* line);
BOOL SetupGetStringFieldUtf8(INFCONTEXT* line, DWORD index, char* buffer, DWORD size, DWORD* needed);
BOOL SetupGetLineTextUtf8(INFCONTEXT* line, HINF inf, const char* section, const char* key, char* buffer, DWORD size,
                          DWORD* needed);
BOOL SetupGetInfInformationUtf8(const char* path, DWORD control, SP_INF_INFORMATION* information, DWORD size,
                                DWORD* needed);
BOOL SetupQueryInfOriginalFileInformationUtf8(SP_INF_INFORMATION* information, UINT index,
                                              SP_ALTPLATFORM_INFO* platform, SP_ORIGINAL_FILE_INFO_A* original);

}  // namespace Orvane::narrow

#define GetSystemDirectoryA ::Orvane::narrow::GetSystemDirectoryUtf8
#define GetWindowsDirectoryA ::Orvane::narrow::GetWindowsDirectoryUtf8
#define GetSystemWindowsDirectoryA ::Orvane::narrow::GetSystemWindowsDirectoryUtf8
#define ExpandEnvironmentStringsA ::Orvane::narrow::ExpandEnvironmentStringsUtf8
#define FindFirstFileA ::Orvane::narrow::FindFirstFileUtf8
#define RegOpenKeyExA ::Orvane::narrow::RegOpenKeyExUtf8
#define RegQueryValueExA ::Orvane::narrow::RegQueryValueExUtf8
#define EnumServicesStatusA ::Orvane::narrow::EnumServicesStatusUtf8
#define OpenServiceA ::Orvane::narrow::OpenServiceUtf8
#define QueryServiceConfigA ::Orvane::narrow::QueryServiceConfigUtf8
#define GetFileVersionInfoSizeA ::Orvane::narrow::GetFileVersionInfoSizeUtf8
#define GetFileVersionInfoA ::Orvane::narrow::GetFileVersionInfoUtf8
#define VerQueryValueA ::Orvane::narrow::VerQueryValueUtf8
#define SetupDiGetDeviceInstanceIdA ::Orvane::narrow::SetupDiGetDeviceInstanceIdUtf8
#define SetupDiGetDeviceRegistryPropertyA ::Orvane::narrow::SetupDiGetDeviceRegistryPropertyUtf8
#define SetupOpenInfFileA ::Orvane::narrow::SetupOpenInfFileUtf8
#define SetupFindFirstLineA ::Orvane::narrow::SetupFindFirstLineUtf8
#define SetupGetStringFieldA ::Orvane::narrow::SetupGetStringFieldUtf8
#define SetupGetLineTextA ::Orvane::narrow::SetupGetLineTextUtf8
#define SetupGetInfInformationA ::Orvane::narrow::SetupGetInfInformationUtf8
#define SetupQueryInfOriginalFileInformationA ::Orvane::narrow::SetupQueryInfOriginalFileInformationUtf8
