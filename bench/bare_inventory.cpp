#include <windows.h>
// After windows.h.
#include <initguid.h>
// Its keys are defined here, because of the header before.
#include <devpkey.h>
#include <setupapi.h>

#include <cwchar>
#include <set>
#include <string>
#include <vector>

#include "bare.h"
#include "pciinfo.h"
#include "platform/handles.h"

namespace bench::bare {
namespace {

using Orvane::DeviceSet;
using Orvane::FindHandle;
using Orvane::InfHandle;
using Orvane::RegKey;
using Orvane::ServiceHandle;

using Texts = std::vector<std::wstring>;

std::wstring WindowsDirectory() {
  wchar_t path[MAX_PATH];
  return std::wstring(path, GetSystemWindowsDirectoryW(path, MAX_PATH));
}

// --- Services

std::wstring ImagePath(const std::wstring& configured, const std::wstring& windows) {
  wchar_t expanded[4096];
  ExpandEnvironmentStringsW(configured.c_str(), expanded, 4096);
  const std::wstring path = expanded;
  if (path.compare(0, 12, L"\\SystemRoot\\") == 0) return windows + path.substr(11);
  return path.find(L':') != std::wstring::npos ? path : windows + L"\\" + path;
}

void ReadService(SC_HANDLE manager, const ENUM_SERVICE_STATUS_PROCESSW& entry, const std::wstring& windows,
                 Texts& texts) {
  ServiceHandle service(OpenServiceW(manager, entry.lpServiceName, SERVICE_QUERY_CONFIG));
  alignas(QUERY_SERVICE_CONFIGW) char buffer[8192];
  auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer);
  DWORD needed = 0;
  QueryServiceConfigW(service.get(), config, sizeof(buffer), &needed);
  service.reset();
  WIN32_FILE_ATTRIBUTE_DATA data;
  const std::wstring path = ImagePath(config->lpBinaryPathName, windows);
  GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
  texts.push_back(entry.lpServiceName);
  texts.push_back(path);
}

void ReadServices(const std::wstring& windows, Texts& texts) {
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
  std::vector<char> buffer(1 << 16);
  DWORD needed = 0;
  DWORD count = 0;
  DWORD resume = 0;
  const auto* const entries = reinterpret_cast<const ENUM_SERVICE_STATUS_PROCESSW*>(buffer.data());
  BOOL isAll = FALSE;
  while (!isAll) {
    isAll = EnumServicesStatusExW(manager.get(), SC_ENUM_PROCESS_INFO, SERVICE_DRIVER, SERVICE_STATE_ALL,
                                  reinterpret_cast<BYTE*>(buffer.data()), static_cast<DWORD>(buffer.size()), &needed,
                                  &count, &resume, nullptr);
    for (DWORD i = 0; i < count; ++i) ReadService(manager.get(), entries[i], windows, texts);
  }
}

// --- Devices

void ReadDevice(HDEVINFO set, SP_DEVINFO_DATA& device, Texts& texts) {
  static wchar_t buffer[1 << 15];
  DEVPROPTYPE type = 0;
  DWORD code = 0;
  SetupDiGetDeviceInstanceIdW(set, &device, buffer, 1024, nullptr);
  texts.push_back(buffer);
  SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_ExtendedConfigurationIds, &type,
                            reinterpret_cast<BYTE*>(buffer), sizeof(buffer), nullptr, 0);
  RegKey key(SetupDiOpenDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_DRV, KEY_QUERY_VALUE));
  if (key) {
    DWORD size = sizeof(buffer);
    if (RegQueryValueExW(key.get(), L"InfPath", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size) ==
        ERROR_SUCCESS) {
      texts.push_back(buffer);
    }
    key.reset();
  }
  SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_ProblemCode, &type, reinterpret_cast<BYTE*>(&code),
                            sizeof(code), nullptr, 0);
}

void ReadDevices(Texts& texts) {
  const DeviceSet set(SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_ALLCLASSES));
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; SetupDiEnumDeviceInfo(set.get(), i, &device); ++i) ReadDevice(set.get(), device, texts);
}

// --- Packages

void AddField(INFCONTEXT& line, DWORD index, Texts& texts) {
  wchar_t text[4096];
  texts.push_back(SetupGetStringFieldW(&line, index, text, 4096, nullptr) ? text : L"");
}

void AddLine(HINF inf, const wchar_t* section, const wchar_t* key, DWORD index, Texts& texts) {
  INFCONTEXT line{};
  if (SetupFindFirstLineW(inf, section, key, &line)) AddField(line, index, texts);
}

void AddOriginalName(HINF inf, Texts& texts) {
  DWORD size = 0;
  SetupGetInfInformationW(inf, INFINFO_INF_SPEC_IS_HINF, nullptr, 0, &size);
  std::vector<char> buffer(size);
  auto* const information = reinterpret_cast<SP_INF_INFORMATION*>(buffer.data());
  SetupGetInfInformationW(inf, INFINFO_INF_SPEC_IS_HINF, information, size, &size);
  SP_ORIGINAL_FILE_INFO_W original{};
  original.cbSize = sizeof(original);
  SetupQueryInfOriginalFileInformationW(information, 0, nullptr, &original);
  texts.push_back(original.OriginalInfName);
}

void ReadPackage(const std::wstring& path, Texts& texts) {
  const InfHandle inf(SetupOpenInfFileW(path.c_str(), nullptr, INF_STYLE_WIN4, nullptr));
  AddLine(inf.get(), L"Version", L"Provider", 1, texts);
  AddLine(inf.get(), L"Version", L"DriverVer", 1, texts);
  AddLine(inf.get(), L"Version", L"DriverVer", 2, texts);
  AddLine(inf.get(), L"Version", L"Class", 1, texts);
  AddOriginalName(inf.get(), texts);
  for (const wchar_t* const section :
       {L"SourceDisksFiles", L"SourceDisksFiles.amd64", L"SourceDisksFiles.ia64", L"SourceDisksFiles.x86"}) {
    INFCONTEXT line{};
    BOOL isLine = SetupFindFirstLineW(inf.get(), section, nullptr, &line);
    for (; isLine; isLine = SetupFindNextLine(&line, &line)) AddField(line, 0, texts);
  }
}

void ReadPackages(const std::wstring& windows, Texts& texts) {
  std::set<std::wstring> infs;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::wstring& text = texts[i];
    if (text.size() > 4 && text.compare(text.size() - 4, 4, L".inf") == 0) infs.insert(text);
  }
  WIN32_FIND_DATAW file;
  const FindHandle found(FindFirstFileW((windows + L"\\inf\\oem*.inf").c_str(), &file));
  for (BOOL isFile = found ? TRUE : FALSE; isFile; isFile = FindNextFileW(found.get(), &file)) {
    infs.insert(file.cFileName);
  }
  for (const std::wstring& inf : infs) ReadPackage(windows + L"\\inf\\" + inf, texts);
}

}  // namespace

std::size_t AskForTheInventory() {
  const std::wstring windows = WindowsDirectory();
  Texts texts;
  ReadServices(windows, texts);
  std::vector<Orvane::PciDeviceRecord> devices;
  GetPciInfo(devices);
  ReadDevices(texts);
  ReadPackages(windows, texts);
  return texts.size() + devices.size();
}

}  // namespace bench::bare
