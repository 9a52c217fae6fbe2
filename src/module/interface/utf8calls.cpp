#include "interface/utf8calls.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/encoding.h"
#include "platform/platformtext.h"

namespace Orvane::narrow {
namespace {

constexpr DWORD LongestText = 1 << 15;

/// `text`, which may be null.
class Wide {
 public:
  explicit Wide(const char* text) : m_isNull(text == nullptr), m_text(m_isNull ? L"" : WideFromUtf8(text)) {}
  operator const wchar_t*() const { return m_isNull ? nullptr : m_text.c_str(); }

 private:
  bool m_isNull;
  std::wstring m_text;
};

/// Copies `text` and a zero. False, with nothing copied, when they do not fit.
bool Copy(const std::string& text, char* buffer, std::size_t size, DWORD* needed) {
  if (needed != nullptr) *needed = static_cast<DWORD>(text.size() + 1);
  if (text.size() >= size) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return false;
  }
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return true;
}

/// What `get` writes for a directory. Like Windows, it returns the length of the path, or the size that it needs.
template <typename Get>
UINT Directory(Get get, char* buffer, UINT size) {
  std::array<wchar_t, MAX_PATH> wide{};
  const UINT length = get(wide.data(), MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return 0;
  const std::string text = Utf8FromWide({wide.data(), length});
  return Copy(text, buffer, size, nullptr) ? static_cast<UINT>(text.size()) : static_cast<UINT>(text.size() + 1);
}

bool IsText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

/// `bytes` as UTF-16, including any zeros in them.
std::string TextFrom(const std::vector<wchar_t>& text, DWORD bytes) {
  return Utf8FromWide({text.data(), std::min<std::size_t>(bytes / sizeof(wchar_t), text.size())});
}

/// Copies as many bytes as fit.
DWORD CopyBytes(const std::string& bytes, void* buffer, DWORD size) {
  if (bytes.size() <= size) std::memcpy(buffer, bytes.data(), bytes.size());
  return static_cast<DWORD>(bytes.size());
}

}  // namespace

UINT GetSystemDirectoryUtf8(char* buffer, UINT size) { return Directory(&GetSystemDirectoryW, buffer, size); }
UINT GetWindowsDirectoryUtf8(char* buffer, UINT size) { return Directory(&GetWindowsDirectoryW, buffer, size); }
UINT GetSystemWindowsDirectoryUtf8(char* buffer, UINT size) {
  return Directory(&GetSystemWindowsDirectoryW, buffer, size);
}

DWORD ExpandEnvironmentStringsUtf8(const char* source, char* buffer, DWORD size) {
  std::vector<wchar_t> wide(LongestText);
  const DWORD length = ExpandEnvironmentStringsW(Wide(source), wide.data(), LongestText);
  if (length == 0 || length > LongestText) return 0;
  DWORD needed = 0;
  Copy(Utf8FromWide(BoundedText(wide.data(), wide.size())), buffer, size, &needed);
  return needed;
}

HANDLE FindFirstFileUtf8(const char* path, WIN32_FIND_DATAA* data) {
  WIN32_FIND_DATAW wide{};
  const HANDLE found = FindFirstFileW(Wide(path), &wide);
  if (found == INVALID_HANDLE_VALUE) return found;
  *data = {};
  data->dwFileAttributes = wide.dwFileAttributes;
  data->ftCreationTime = wide.ftCreationTime;
  data->ftLastAccessTime = wide.ftLastAccessTime;
  data->ftLastWriteTime = wide.ftLastWriteTime;
  data->nFileSizeHigh = wide.nFileSizeHigh;
  data->nFileSizeLow = wide.nFileSizeLow;
  const std::string name = Utf8FromWide(BoundedText(wide.cFileName, MAX_PATH));
  std::copy_n(name.begin(), std::min<std::size_t>(name.size(), MAX_PATH - 1), data->cFileName);
  return found;
}

LSTATUS RegOpenKeyExUtf8(HKEY key, const char* subKey, DWORD options, REGSAM access, HKEY* opened) {
  return RegOpenKeyExW(key, Wide(subKey), options, access, opened);
}

LSTATUS RegQueryValueExUtf8(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* buffer, DWORD* size) {
  std::vector<wchar_t> wide(LongestText);
  DWORD bytes = static_cast<DWORD>(wide.size() * sizeof(wchar_t));
  DWORD found = 0;
  const LSTATUS status =
      RegQueryValueExW(key, Wide(name), reserved, &found, reinterpret_cast<BYTE*>(wide.data()), &bytes);
  if (status != ERROR_SUCCESS) return status;
  if (type != nullptr) *type = found;
  const std::string value =
      IsText(found) ? TextFrom(wide, bytes) : std::string(reinterpret_cast<const char*>(wide.data()), bytes);
  const DWORD room = *size;
  *size = CopyBytes(value, buffer, room);
  return *size <= room ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

BOOL EnumServicesStatusUtf8(SC_HANDLE manager, DWORD type, DWORD state, ENUM_SERVICE_STATUSA* services,
                            DWORD bufferSize, DWORD* needed, DWORD* count, DWORD* resume) {
  DWORD wideSize = 0;
  EnumServicesStatusW(manager, type, state, nullptr, 0, &wideSize, count, resume);
  if (services == nullptr) {
    // Two bytes of UTF-16 become at most three of UTF-8.
    *needed = wideSize * 2;
    return FALSE;
  }
  std::vector<ENUM_SERVICE_STATUSW> wide(wideSize / sizeof(ENUM_SERVICE_STATUSW) + 1);
  const DWORD room = static_cast<DWORD>(wide.size() * sizeof(ENUM_SERVICE_STATUSW));
  const BOOL isAll = EnumServicesStatusW(manager, type, state, wide.data(), room, needed, count, resume);
  if (!isAll && GetLastError() != ERROR_MORE_DATA) return FALSE;
  const auto* const begin = reinterpret_cast<const char*>(wide.data());
  // The structures are at the beginning, and the names fill the buffer from its end.
  char* end = reinterpret_cast<char*>(services) + bufferSize;
  const DWORD found = std::min<DWORD>(*count, static_cast<DWORD>(wide.size()));
  for (*count = 0; *count < found; ++*count) {
    const ENUM_SERVICE_STATUSW& service = wide[*count];
    const std::string name = Utf8FromWide(TextWithin(service.lpServiceName, begin, room));
    if (end - reinterpret_cast<char*>(services + *count + 1) < static_cast<std::ptrdiff_t>(name.size() + 1)) break;
    end -= name.size() + 1;
    std::memcpy(end, name.c_str(), name.size() + 1);
    services[*count] = {end, end, service.ServiceStatus};
  }
  if (isAll && *count == found) return TRUE;
  SetLastError(ERROR_MORE_DATA);
  return FALSE;
}

SC_HANDLE OpenServiceUtf8(SC_HANDLE manager, const char* name, DWORD access) {
  return OpenServiceW(manager, Wide(name), access);
}

BOOL QueryServiceConfigUtf8(SC_HANDLE service, QUERY_SERVICE_CONFIGA* config, DWORD bufferSize, DWORD* needed) {
  // The largest configuration that Windows allows.
  alignas(QUERY_SERVICE_CONFIGW) std::array<char, 8192> buffer{};
  auto* const wide = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer.data());
  if (!QueryServiceConfigW(service, wide, static_cast<DWORD>(buffer.size()), needed)) return FALSE;
  const std::string path = Utf8FromWide(TextWithin(wide->lpBinaryPathName, buffer.data(), buffer.size()));
  char* const text = reinterpret_cast<char*>(config + 1);
  if (bufferSize < sizeof(*config) || !Copy(path, text, bufferSize - sizeof(*config), nullptr)) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  *config = {};
  config->dwServiceType = wide->dwServiceType;
  config->dwStartType = wide->dwStartType;
  config->dwErrorControl = wide->dwErrorControl;
  config->dwTagId = wide->dwTagId;
  config->lpBinaryPathName = text;
  return TRUE;
}

DWORD GetFileVersionInfoSizeUtf8(const char* path, DWORD* handle) {
  return GetFileVersionInfoSizeW(Wide(path), handle);
}

BOOL GetFileVersionInfoUtf8(const char* path, DWORD handle, DWORD size, void* block) {
  return GetFileVersionInfoW(Wide(path), handle, size, block);
}

BOOL VerQueryValueUtf8(const void* block, const char* path, void** value, UINT* length) {
  static std::string text;
  if (!VerQueryValueW(block, Wide(path), value, length)) return FALSE;
  constexpr std::string_view texts = "\\StringFileInfo\\";
  if (std::string_view(path).substr(0, texts.size()) != texts || *value == nullptr) return TRUE;
  text = Utf8FromWide(BoundedText(static_cast<const wchar_t*>(*value), *length));
  *value = text.data();
  // Including the zero, unless it is empty.
  if (*length > 0) *length = static_cast<UINT>(text.size() + 1);
  return TRUE;
}

BOOL SetupDiGetDeviceInstanceIdUtf8(HDEVINFO set, SP_DEVINFO_DATA* device, char* buffer, DWORD size, DWORD* needed) {
  std::array<wchar_t, 1024> wide{};
  if (!SetupDiGetDeviceInstanceIdW(set, device, wide.data(), static_cast<DWORD>(wide.size()), nullptr)) return FALSE;
  return Copy(Utf8FromWide(BoundedText(wide.data(), wide.size())), buffer, size, needed) ? TRUE : FALSE;
}

BOOL SetupDiGetDeviceRegistryPropertyUtf8(HDEVINFO set, SP_DEVINFO_DATA* device, DWORD property, DWORD* type,
                                          BYTE* buffer, DWORD size, DWORD* needed) {
  std::vector<wchar_t> wide(LongestText);
  DWORD bytes = 0;
  DWORD found = 0;
  if (!SetupDiGetDeviceRegistryPropertyW(set, device, property, &found, reinterpret_cast<BYTE*>(wide.data()),
                                         static_cast<DWORD>(wide.size() * sizeof(wchar_t)), &bytes)) {
    return FALSE;
  }
  if (type != nullptr) *type = found;
  const std::string value = TextFrom(wide, bytes);
  const DWORD valueSize = CopyBytes(value, buffer, size);
  if (needed != nullptr) *needed = valueSize;
  if (valueSize <= size) return TRUE;
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return FALSE;
}

HINF SetupOpenInfFileUtf8(const char* path, const char* infClass, DWORD style, UINT* errorLine) {
  return SetupOpenInfFileW(Wide(path), Wide(infClass), style, errorLine);
}

BOOL SetupFindFirstLineUtf8(HINF inf, const char* section, const char* key, INFCONTEXT* line) {
  return SetupFindFirstLineW(inf, Wide(section), Wide(key), line);
}

BOOL SetupGetStringFieldUtf8(INFCONTEXT* line, DWORD index, char* buffer, DWORD size, DWORD* needed) {
  std::array<wchar_t, 4096> wide{};
  if (!SetupGetStringFieldW(line, index, wide.data(), static_cast<DWORD>(wide.size()), nullptr)) return FALSE;
  return Copy(Utf8FromWide(BoundedText(wide.data(), wide.size())), buffer, size, needed) ? TRUE : FALSE;
}

BOOL SetupGetLineTextUtf8(INFCONTEXT* line, HINF inf, const char* section, const char* key, char* buffer, DWORD size,
                          DWORD* needed) {
  std::array<wchar_t, 4096> wide{};
  if (!SetupGetLineTextW(line, inf, Wide(section), Wide(key), wide.data(), static_cast<DWORD>(wide.size()), nullptr)) {
    return FALSE;
  }
  return Copy(Utf8FromWide(BoundedText(wide.data(), wide.size())), buffer, size, needed) ? TRUE : FALSE;
}

BOOL SetupGetInfInformationUtf8(const char* path, DWORD control, SP_INF_INFORMATION* information, DWORD size,
                                DWORD* needed) {
  return SetupGetInfInformationW(Wide(path), control, information, size, needed);
}

BOOL SetupQueryInfOriginalFileInformationUtf8(SP_INF_INFORMATION* information, UINT index,
                                              SP_ALTPLATFORM_INFO* platform, SP_ORIGINAL_FILE_INFO_A* original) {
  SP_ORIGINAL_FILE_INFO_W wide{};
  wide.cbSize = sizeof(wide);
  if (!SetupQueryInfOriginalFileInformationW(information, index, platform, &wide)) return FALSE;
  Copy(Utf8FromWide(BoundedText(wide.OriginalCatalogName, MAX_PATH)), original->OriginalCatalogName, MAX_PATH, nullptr);
  const std::string name = Utf8FromWide(BoundedText(wide.OriginalInfName, MAX_PATH));
  return Copy(name, original->OriginalInfName, MAX_PATH, nullptr) ? TRUE : FALSE;
}

}  // namespace Orvane::narrow
