#include "machine.h"

// After windows.h.
#include <initguid.h>
// Its keys are defined here, because of the header before.
#include <devpkey.h>
#include <setupapi.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <stdexcept>

#include "platform/encoding.h"
#include "platform/handles.h"
#include "platform/wine.h"

namespace test {
namespace {

using Orvane::DeviceSet;
using Orvane::FileHandle;
using Orvane::RegKey;
using Orvane::ServiceHandle;
using Orvane::Utf8FromWide;
using Orvane::WideFromUtf8;

constexpr REGSAM Access = KEY_READ | KEY_WRITE | KEY_WOW64_64KEY;
constexpr char EnumKey[] = "System\\CurrentControlSet\\Enum\\";

void Require(bool success, const std::string& what) {
  if (!success) throw std::runtime_error(what + " failed with error " + std::to_string(GetLastError()));
}

void RequireStatus(LSTATUS status, const std::string& what) {
  SetLastError(static_cast<DWORD>(status));
  Require(status == ERROR_SUCCESS, what);
}

RegKey OpenKey(const std::string& path, REGSAM access) {
  HKEY key = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, WideFromUtf8(path).c_str(), 0, access, &key);
  return RegKey(key);
}

std::pair<RegKey, bool> MakeKey(const std::string& path) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  RequireStatus(RegCreateKeyExW(HKEY_LOCAL_MACHINE, WideFromUtf8(path).c_str(), 0, nullptr, 0, Access, nullptr, &key,
                                &disposition),
                "creating the key " + path);
  return {RegKey(key), disposition == REG_CREATED_NEW_KEY};
}

ServiceHandle OpenManager(DWORD access) {
  ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, access));
  Require(static_cast<bool>(manager), "opening the service control manager");
  return manager;
}

GUID ClassGuid(const std::string& name) {
  static const std::pair<const char*, GUID> classes[] = {
      {"Display", {0x4D36E968, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}},
      {"HIDClass", {0x745A17A0, 0x74D3, 0x11D0, {0xB6, 0xFE, 0x00, 0xA0, 0xC9, 0x0F, 0x57, 0xDA}}},
      {"Net", {0x4D36E972, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}},
      {"SCSIAdapter", {0x4D36E97B, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}},
      {"System", {0x4D36E97D, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}}}};
  for (const auto& [className, guid] : classes) {
    if (name == className) return guid;
  }
  return GUID{};
}

const BYTE* Bytes(const std::wstring& text) { return reinterpret_cast<const BYTE*>(text.c_str()); }

/// Of all of `text`, and the zero behind it.
DWORD Size(const std::wstring& text) { return static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)); }

/// Each text with a zero behind it.
std::wstring Joined(const std::vector<std::string>& texts) {
  std::wstring joined;
  for (const std::string& text : texts) joined += WideFromUtf8(text) + L'\0';
  return joined;
}

void SetProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property, const std::wstring& value) {
  if (value.empty()) return;
  Require(SetupDiSetDeviceRegistryPropertyW(set, &device, property, Bytes(value), Size(value)),
          "setting a property of a device");
}

void SetProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property, const std::string& value) {
  SetProperty(set, device, property, WideFromUtf8(value));
}

void SetNamedProperty(HDEVINFO set, SP_DEVINFO_DATA& device, const DEVPROPKEY& property, DEVPROPTYPE type,
                      const BYTE* value, DWORD size) {
  // Not every header declares it.
  const auto setProperty = reinterpret_cast<BOOL(WINAPI*)(HDEVINFO, SP_DEVINFO_DATA*, const DEVPROPKEY*, DEVPROPTYPE,
                                                          const BYTE*, DWORD, DWORD)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"setupapi.dll"), "SetupDiSetDevicePropertyW")));
  Require(setProperty != nullptr && setProperty(set, &device, &property, type, value, size, 0),
          "setting a named property of a device");
}

/// What Windows itself finds out about a device while it drives it.
void SetFindings(HDEVINFO set, SP_DEVINFO_DATA& device, const DeviceSettings& settings) {
  if (settings.problemCode) {
    SetNamedProperty(set, device, DEVPKEY_Device_ProblemCode, DEVPROP_TYPE_UINT32,
                     reinterpret_cast<const BYTE*>(&*settings.problemCode), sizeof(*settings.problemCode));
  }
  if (settings.extensions.empty()) return;
  std::vector<std::string> extensions;
  for (const std::string& inf : settings.extensions) extensions.push_back(inf + ":" + settings.instanceId);
  const std::wstring value = Joined(extensions);
  SetNamedProperty(set, device, DEVPKEY_Device_ExtendedConfigurationIds, DEVPROP_TYPE_STRING_LIST, Bytes(value),
                   Size(value));
}

void SetText(const RegKey& key, const std::wstring& name, const std::string& value) {
  const std::wstring wide = WideFromUtf8(value);
  RequireStatus(RegSetValueExW(key.get(), name.c_str(), 0, REG_SZ, Bytes(wide), Size(wide)),
                "setting the value " + Utf8FromWide(name));
}

void InstallPackage(HDEVINFO set, SP_DEVINFO_DATA& device, const DeviceSettings& settings) {
  const RegKey driver(SetupDiCreateDevRegKeyW(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_DRV, nullptr, nullptr));
  Require(static_cast<bool>(driver), "creating the driver key of " + settings.instanceId);
  SetText(driver, L"InfPath", settings.package->inf);
  SetText(driver, L"DriverVersion", settings.package->version);
  SetText(driver, L"DriverDate", settings.package->date);
  SetText(driver, L"DriverDesc", settings.description);
  if (!settings.package->provider.empty()) SetText(driver, L"ProviderName", settings.package->provider);
}

/// One block of a version resource: length, length of the value, type, key, value, children, each aligned to four
/// bytes.
class VersionBlock {
 public:
  VersionBlock(const std::wstring& key, bool isText) {
    Word(0);
    Word(0);
    Word(isText ? 1 : 0);
    for (const wchar_t c : key) Word(static_cast<WORD>(c));
    Word(0);
    Align();
  }
  void BinaryValue(const void* value, std::size_t size) {
    SetWord(2, static_cast<WORD>(size));
    const char* const bytes = static_cast<const char*>(value);
    m_bytes.insert(m_bytes.end(), bytes, bytes + size);
  }
  void TextValue(const std::wstring& text) {
    SetWord(2, static_cast<WORD>(text.size() + 1));
    for (const wchar_t c : text) Word(static_cast<WORD>(c));
    Word(0);
  }
  void Child(VersionBlock child) {
    Align();
    const std::vector<char> bytes = std::move(child).Finished();
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
  }
  std::vector<char> Finished() && {
    SetWord(0, static_cast<WORD>(m_bytes.size()));
    return std::move(m_bytes);
  }

 private:
  void Word(WORD word) {
    m_bytes.push_back(static_cast<char>(word & 0xFF));
    m_bytes.push_back(static_cast<char>(word >> 8));
  }
  void SetWord(std::size_t offset, WORD word) { std::memcpy(&m_bytes[offset], &word, sizeof(word)); }
  void Align() { m_bytes.resize((m_bytes.size() + 3) & ~std::size_t{3}); }

  std::vector<char> m_bytes;
};

std::wstring Hex4(WORD word) {
  wchar_t text[8];
  std::swprintf(text, 8, L"%04x", word);
  return text;
}

}  // namespace

bool IsWine() { return Orvane::IsWine(); }

std::string SystemDirectory() {
  char path[MAX_PATH];
  return std::string(path, GetSystemDirectoryA(path, MAX_PATH));
}

std::string DriverPath(const std::string& file) { return SystemDirectory() + "\\drivers\\" + file; }

std::string InfDirectory() {
  char path[MAX_PATH];
  return std::string(path, GetSystemWindowsDirectoryA(path, MAX_PATH)) + "\\inf";
}

std::wstring ProgramDirectory() {
  wchar_t path[1024];
  const std::wstring program(path, GetModuleFileNameW(nullptr, path, 1024));
  return program.substr(0, program.rfind(L'\\'));
}

std::string ProgramFile(const std::wstring& file) {
  const std::wstring path = ProgramDirectory() + L"\\" + file;
  const bool ascii = std::all_of(path.begin(), path.end(), [](wchar_t c) { return c < 0x80; });
  wchar_t shortPath[1024];
  const std::wstring chosen = ascii ? path : std::wstring(shortPath, GetShortPathNameW(path.c_str(), shortPath, 1024));
  std::string narrow;
  for (const wchar_t c : chosen) narrow += static_cast<char>(c);
  return narrow;
}

bool IsPrivateMachine() {
  char windows[MAX_PATH];
  const std::string mark = std::string(windows, GetSystemWindowsDirectoryA(windows, MAX_PATH)) + "\\driverinfo-machine";
  return IsWine() && GetFileAttributesA(mark.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool MakeRegistryKey(const std::string& key) { return MakeKey(key).second; }

bool SetRegistryValue(const std::string& key, const std::string& name, DWORD type, const std::string& bytes) {
  const auto [handle, isNew] = MakeKey(key);
  RequireStatus(RegSetValueExA(handle.get(), name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                               static_cast<DWORD>(bytes.size())),
                "setting the value " + name + " of " + key);
  return isNew;
}

bool SetRegistryText(const std::string& key, const std::string& name, const std::string& text) {
  const auto [handle, isNew] = MakeKey(key);
  SetText(handle, WideFromUtf8(name), text);
  return isNew;
}

void DeleteRegistryValue(const std::string& key, const std::string& name) {
  if (const RegKey opened = OpenKey(key, Access)) RegDeleteValueW(opened.get(), WideFromUtf8(name).c_str());
}

void DeleteRegistryKey(const std::string& key) {
  if (const RegKey opened = OpenKey(key, Access | DELETE)) {
    RegDeleteTreeW(opened.get(), nullptr);
    RegDeleteKeyExW(HKEY_LOCAL_MACHINE, WideFromUtf8(key).c_str(), KEY_WOW64_64KEY, 0);
  }
}

std::vector<std::string> RegistrySubkeys(const std::string& key) {
  std::vector<std::string> names;
  const RegKey opened = OpenKey(key, Access);
  wchar_t name[512];
  while (opened && RegEnumKeyW(opened.get(), static_cast<DWORD>(names.size()), name, 512) == ERROR_SUCCESS) {
    names.push_back(Utf8FromWide(name));
  }
  return names;
}

std::string ServiceKey(const std::string& name) { return "System\\CurrentControlSet\\Services\\" + name; }

void CreateDriverService(const std::string& name, const std::string& imagePath, DWORD startType, DWORD serviceType) {
  const ServiceHandle manager = OpenManager(SC_MANAGER_CREATE_SERVICE);
  // A service cannot be created without a path, but left without one.
  const std::wstring path = imagePath.empty() ? L"none" : WideFromUtf8(imagePath);
  const ServiceHandle service(CreateServiceW(
      manager.get(), WideFromUtf8(name).c_str(), WideFromUtf8("Display name of " + name).c_str(), SERVICE_CHANGE_CONFIG,
      serviceType, startType, SERVICE_ERROR_NORMAL, path.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
  Require(static_cast<bool>(service), "creating the service " + name);
  if (!imagePath.empty()) return;
  Require(ChangeServiceConfigW(service.get(), SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, L"", nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
          "taking away the path of " + name);
  DeleteRegistryValue(ServiceKey(name), "ImagePath");
}

void StartDriverService(const std::string& name) {
  const ServiceHandle manager = OpenManager(SC_MANAGER_CONNECT);
  const ServiceHandle service(OpenServiceW(manager.get(), WideFromUtf8(name).c_str(), SERVICE_START));
  Require(static_cast<bool>(service), "opening the service " + name);
  bool isStarted = StartServiceW(service.get(), 0, nullptr) != FALSE;
  // Wine fails so while the process that ran the last drivers is ending.
  for (int tries = 0; tries < 50 && !isStarted && GetLastError() == ERROR_INTERNAL_ERROR; ++tries) {
    Sleep(100);
    isStarted = StartServiceW(service.get(), 0, nullptr) != FALSE;
  }
  Require(isStarted || GetLastError() == ERROR_SERVICE_ALREADY_RUNNING, "starting the service " + name);
}

void DeleteDriverService(const std::string& name) {
  const ServiceHandle manager = OpenManager(SC_MANAGER_CONNECT);
  if (const ServiceHandle service{OpenServiceW(manager.get(), WideFromUtf8(name).c_str(), SERVICE_STOP | DELETE)}) {
    SERVICE_STATUS status;
    ControlService(service.get(), SERVICE_CONTROL_STOP, &status);
    DeleteService(service.get());
  }
  DeleteRegistryKey(ServiceKey(name));
}

void CreateDevice(const DeviceSettings& settings) {
  const DeviceSet set(SetupDiCreateDeviceInfoList(nullptr, nullptr));
  Require(static_cast<bool>(set), "making a list of devices");
  const GUID classGuid = ClassGuid(settings.className);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  Require(SetupDiCreateDeviceInfoW(set.get(), WideFromUtf8(settings.instanceId).c_str(), &classGuid,
                                   WideFromUtf8(settings.description).c_str(), nullptr, 0, &device) &&
              SetupDiRegisterDeviceInfo(set.get(), &device, 0, nullptr, nullptr, nullptr),
          "creating the device " + settings.instanceId);
  SetProperty(set.get(), device, SPDRP_MFG, settings.manufacturer);
  SetProperty(set.get(), device, SPDRP_CLASS, settings.className);
  SetProperty(set.get(), device, SPDRP_LOCATION_INFORMATION, settings.location);
  SetProperty(set.get(), device, SPDRP_SERVICE, settings.service);
  SetProperty(set.get(), device, SPDRP_FRIENDLYNAME, settings.friendlyName);
  SetProperty(set.get(), device, SPDRP_HARDWAREID, Joined(settings.hardwareIds));
  SetFindings(set.get(), device, settings);
  if (settings.package) InstallPackage(set.get(), device, settings);
}

void RemoveDevice(const std::string& instanceId) {
  const DeviceSet set(SetupDiCreateDeviceInfoList(nullptr, nullptr));
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  if (!set || !SetupDiOpenDeviceInfoW(set.get(), WideFromUtf8(instanceId).c_str(), nullptr, 0, &device)) return;
  SetupDiDeleteDevRegKey(set.get(), &device, DICS_FLAG_GLOBAL, 0, DIREG_DRV);
  SetupDiRemoveDevice(set.get(), &device);
  if (IsWine()) DeleteRegistryKey(EnumKey + instanceId);
}

std::string MakeFoldersFor(const std::string& path) {
  std::string first;
  for (std::size_t end = path.find('\\', 3); end != std::string::npos; end = path.find('\\', end + 1)) {
    const std::string folder = path.substr(0, end);
    if (CreateDirectoryW(WideFromUtf8(folder).c_str(), nullptr) && first.empty()) first = folder;
  }
  return first;
}

std::string CopyImage(const std::wstring& image, const std::string& path) {
  const std::string firstFolder = MakeFoldersFor(path);
  Require(CopyFileW((ProgramDirectory() + L"\\" + image).c_str(), WideFromUtf8(path).c_str(), FALSE),
          "copying an image to " + path);
  return firstFolder;
}

void SetFileCreationTime(const std::string& path, const SYSTEMTIME& utc) {
  FILETIME fileTime;
  const FileHandle file(
      CreateFileW(WideFromUtf8(path).c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  Require(file && SystemTimeToFileTime(&utc, &fileTime) && SetFileTime(file.get(), &fileTime, nullptr, &fileTime),
          "setting the time of " + path);
}

std::vector<char> VersionResourceBytes(const VersionSettings& settings) {
  VS_FIXEDFILEINFO fixed{};
  fixed.dwSignature = VS_FFI_SIGNATURE;
  fixed.dwStrucVersion = VS_FFI_STRUCVERSION;
  fixed.dwFileVersionMS = static_cast<DWORD>(MAKELONG(settings.file[1], settings.file[0]));
  fixed.dwFileVersionLS = static_cast<DWORD>(MAKELONG(settings.file[3], settings.file[2]));
  fixed.dwProductVersionMS = static_cast<DWORD>(MAKELONG(settings.product[1], settings.product[0]));
  fixed.dwProductVersionLS = static_cast<DWORD>(MAKELONG(settings.product[3], settings.product[2]));
  fixed.dwFileOS = VOS_NT_WINDOWS32;
  fixed.dwFileType = VFT_DRV;
  VersionBlock root(L"VS_VERSION_INFO", false);
  root.BinaryValue(&fixed, sizeof(fixed));
  VersionBlock table(Hex4(settings.language) + Hex4(settings.codePage), true);
  for (const auto& [key, text] : settings.texts) {
    VersionBlock entry(key, true);
    entry.TextValue(text);
    table.Child(std::move(entry));
  }
  VersionBlock strings(L"StringFileInfo", true);
  strings.Child(std::move(table));
  root.Child(std::move(strings));
  const WORD translation[] = {settings.language, settings.codePage};
  VersionBlock translations(L"Translation", false);
  translations.BinaryValue(translation, sizeof(translation));
  VersionBlock variables(L"VarFileInfo", true);
  variables.Child(std::move(translations));
  root.Child(std::move(variables));
  return std::move(root).Finished();
}

void SetVersionResource(const std::string& path, const std::vector<char>& bytes) {
  const HANDLE update = BeginUpdateResourceW(WideFromUtf8(path).c_str(), FALSE);
  Require(update != nullptr, "opening the resources of " + path);
  // The resource type and name of a version resource, RT_VERSION and 1.
  Require(
      UpdateResourceW(update, MAKEINTRESOURCEW(16), MAKEINTRESOURCEW(1), MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
                      const_cast<char*>(bytes.data()), static_cast<DWORD>(bytes.size())) &&
          EndUpdateResourceW(update, FALSE),
      "writing the version resource of " + path);
}

}  // namespace test
