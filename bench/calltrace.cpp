#include "calltrace.h"

// After windows.h.
#include <setupapi.h>
#include <sys/timeb.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "importhook.h"
#include "pciinfo.h"

namespace bench {
namespace {

std::vector<std::string> lines;

std::string Shown(const char* text) { return text != nullptr ? "\"" + std::string(text) + "\"" : "null"; }
std::string Shown(const wchar_t* text) { return Shown(std::string(text, text + wcslen(text)).c_str()); }
std::string Shown(unsigned long* number) { return number != nullptr ? "&" + std::to_string(*number) : "null"; }
std::string Shown(unsigned int* number) { return number != nullptr ? "&" + std::to_string(*number) : "null"; }
std::string Shown(HKEY key) {
  return key == HKEY_LOCAL_MACHINE ? "HKEY_LOCAL_MACHINE" : key != nullptr ? "key" : "null";
}

template <typename T>
std::string Shown(T value) {
  if constexpr (std::is_enum_v<T> || std::is_arithmetic_v<T>) {
    return std::to_string(static_cast<long long>(value));
  } else {
    static_assert(std::is_pointer_v<T>);
    return value == nullptr ? "null" : value == INVALID_HANDLE_VALUE ? "invalid" : "some";
  }
}

/// A buffer to fill holds nothing yet.
std::string Shown(char* buffer) { return buffer != nullptr ? "buffer" : "null"; }

std::string Shown(std::vector<Orvane::PciDeviceRecord>& devices) { return std::to_string(devices.size()); }

/// The library asks once in its life which platform this is; no listing needs the answer.
bool IsAboutThePlatform(const std::string& line) { return line.find("\"wine_get_version\"") != std::string::npos; }

/// Stands in the place of a function, records the call and makes it.
template <auto Function>
struct Stand;

template <typename Result, typename... Arguments, Result (*Function)(Arguments...)>
struct Stand<Function> {
  static inline const char* name;
  static inline Result (*real)(Arguments...);

  static Result Enter(Arguments... arguments) {
    std::string line = name;
    ((line += " " + Shown(arguments)), ...);
    if (!IsAboutThePlatform(line)) lines.push_back(std::move(line));
    return real(arguments...);
  }
};

struct Traced {
  const char* dll;
  const char* name;
  void* stand;
  void (*setReal)(void* address);
};

template <auto Function>
Traced Trace(const char* dll, const char* name) {
  Stand<Function>::name = name;
  return {dll, name, reinterpret_cast<void*>(&Stand<Function>::Enter),
          [](void* address) { Stand<Function>::real = reinterpret_cast<decltype(Function)>(address); }};
}

#define TRACE(dll, function) Trace<&function>(dll, #function)

std::vector<Traced> TracedFunctions() {
  return {TRACE("advapi32", CloseServiceHandle),
          TRACE("advapi32", EnumServicesStatusA),
          TRACE("advapi32", OpenSCManagerA),
          TRACE("advapi32", OpenServiceA),
          TRACE("advapi32", QueryServiceConfigA),
          TRACE("advapi32", RegOpenKeyExA),
          TRACE("advapi32", RegQueryValueExA),
          TRACE("setupapi", SetupCloseInfFile),
          TRACE("setupapi", SetupFindFirstLineA),
          TRACE("setupapi", SetupFindNextLine),
          TRACE("setupapi", SetupGetFieldCount),
          TRACE("setupapi", SetupGetInfInformationA),
          TRACE("setupapi", SetupGetLineTextA),
          TRACE("setupapi", SetupGetStringFieldA),
          TRACE("setupapi", SetupOpenInfFileA),
          TRACE("setupapi", SetupQueryInfOriginalFileInformationA),
          TRACE("version", GetFileVersionInfoA),
          TRACE("version", GetFileVersionInfoSizeA),
          TRACE("version", VerQueryValueA),
          TRACE("kernel32", CloseHandle),
          TRACE("kernel32", CreateFileW),
          TRACE("kernel32", ExpandEnvironmentStringsA),
          TRACE("kernel32", FileTimeToSystemTime),
          TRACE("kernel32", FindClose),
          TRACE("kernel32", FindFirstFileA),
          TRACE("kernel32", FreeLibrary),
          TRACE("kernel32", GetFileInformationByHandleEx),
          TRACE("kernel32", GetProcAddress),
          TRACE("kernel32", GetSystemDirectoryA),
          TRACE("kernel32", GetSystemInfo),
          TRACE("kernel32", GetSystemWindowsDirectoryA),
          TRACE("kernel32", GetVersionExA),
          TRACE("kernel32", GetWindowsDirectoryA),
          TRACE("kernel32", LoadLibraryExA),
          TRACE("kernel32", SystemTimeToTzSpecificLocalTime),
          TRACE("msvcrt", _ftime64_s),
          TRACE("msvcrt", _localtime64),
          TRACE("msvcrt", _mktime64),
          TRACE("pciinfo", GetPciInfo)};
}

template <typename T>
const T* At(HMODULE module, DWORD offset) {
  return reinterpret_cast<const T*>(reinterpret_cast<const char*>(module) + offset);
}

const IMAGE_NT_HEADERS* Headers(HMODULE module) {
  return At<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
}

/// The places of `module` that hold `address`: import slots, and pointers in its data.
std::vector<void**> PlacesOf(HMODULE module, const void* address) {
  std::vector<void**> places;
  const IMAGE_NT_HEADERS* const headers = Headers(module);
  const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
  for (WORD i = 0; i < headers->FileHeader.NumberOfSections; ++i, ++section) {
    constexpr DWORD data = IMAGE_SCN_CNT_INITIALIZED_DATA | IMAGE_SCN_CNT_UNINITIALIZED_DATA;
    if ((section->Characteristics & data) == 0 || (section->Characteristics & IMAGE_SCN_MEM_WRITE) == 0) continue;
    auto* const begin = const_cast<void**>(At<void*>(module, section->VirtualAddress));
    auto* const end = begin + section->Misc.VirtualSize / sizeof(void*);
    for (void** place = begin; place < end; ++place) {
      if (*place == address) places.push_back(place);
    }
  }
  return places;
}

/// No question of these modules goes by without being seen.
void RequireAllTraced(HMODULE module, const std::vector<Traced>& functions) {
  const DWORD directory = Headers(module)->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(module, directory); dll->Name != 0; ++dll) {
    const auto isOfThisDll = [&](const Traced& function) {
      return _stricmp((std::string(function.dll) + ".dll").c_str(), At<char>(module, dll->Name)) == 0;
    };
    const bool isPlatform = std::any_of(functions.begin(), functions.end(), isOfThisDll);
    const std::string name = At<char>(module, dll->Name);
    if (!isPlatform || _stricmp(name.c_str(), "kernel32.dll") == 0 || _stricmp(name.c_str(), "msvcrt.dll") == 0)
      continue;
    for (const auto* entry = At<IMAGE_THUNK_DATA>(module, dll->OriginalFirstThunk); entry->u1.AddressOfData != 0;
         ++entry) {
      const char* const import = reinterpret_cast<const char*>(
          At<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(entry->u1.AddressOfData))->Name);
      const auto isThis = [&](const Traced& function) { return std::strcmp(function.name, import) == 0; };
      if (std::none_of(functions.begin(), functions.end(), isThis)) {
        throw std::runtime_error("calls of " + std::string(import) + " are not traced");
      }
    }
  }
}

}  // namespace

CallTrace::CallTrace(HMODULE module) {
  const std::vector<Traced> functions = TracedFunctions();
  RequireAllTraced(module, functions);
  // All are looked up before the first takes its place, and the stands let go of what they knew: the module may be this
  // program, and their pointers are none of its calls.
  for (const Traced& function : functions) function.setReal(nullptr);
  std::vector<std::pair<void**, void*>> replacements;
  std::vector<void*> addresses;
  for (const Traced& function : functions) {
    addresses.push_back(reinterpret_cast<void*>(GetProcAddress(LoadLibraryA(function.dll), function.name)));
    for (void** const place : PlacesOf(module, addresses.back())) replacements.emplace_back(place, function.stand);
  }
  for (std::size_t i = 0; i < functions.size(); ++i) functions[i].setReal(addresses[i]);
  for (const auto& [place, stand] : replacements) m_slots.push_back({place, test::ReplaceSlot(place, stand)});
  lines.clear();
}

CallTrace::~CallTrace() {
  for (const Slot& slot : m_slots) test::ReplaceSlot(slot.place, slot.former);
}

const std::vector<std::string>& CallTrace::Lines() const { return lines; }

}  // namespace bench
