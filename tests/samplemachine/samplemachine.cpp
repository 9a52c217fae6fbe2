#include "samplemachine.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "machine.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "trustedmachine.h"

namespace samplemachine {
namespace {

using Orvane::Utf8FromWide;
using Orvane::WideFromUtf8;

constexpr char Services[] = "System\\CurrentControlSet\\Services";
constexpr char Enumerators[] = "System\\CurrentControlSet\\Enum\\";

std::string ImagePath(const Driver& driver) {
  const bool isFullPath = driver.file.find(':') != std::string::npos;
  return isFullPath ? driver.file : test::SystemDirectory() + "\\" + driver.file;
}

std::string PackagePath(const Package& package) { return test::InfDirectory() + "\\" + package.inf; }

bool IsDriverService(const std::string& name) {
  DWORD type = 0;
  DWORD size = sizeof(type);
  return RegGetValueW(HKEY_LOCAL_MACHINE, WideFromUtf8(std::string(Services) + "\\" + name).c_str(), L"Type",
                      RRF_RT_REG_DWORD, nullptr, &type, &size) == ERROR_SUCCESS &&
         (type & SERVICE_DRIVER) != 0;
}

std::vector<std::string> FilesLike(const std::string& pattern) {
  std::vector<std::string> names;
  WIN32_FIND_DATAW file;
  const Orvane::FindHandle found(FindFirstFileW(WideFromUtf8(pattern).c_str(), &file));
  if (!found) return names;
  do {
    names.push_back(Utf8FromWide(file.cFileName));
  } while (FindNextFileW(found.get(), &file));
  return names;
}

void DeleteExistingFile(const std::string& path) { DeleteFileW(WideFromUtf8(path).c_str()); }

/// With the folders above it that are empty then.
void DeleteDriver(const std::string& path) {
  DeleteExistingFile(path);
  std::string folder = path;
  do {
    folder.resize(folder.rfind('\\'));
  } while (RemoveDirectoryW(WideFromUtf8(folder).c_str()));
}

void MakeDriver(const Driver& driver) {
  const std::string path = ImagePath(driver);
  if (!driver.image.empty()) {
    test::MakeFoldersFor(path);
    std::filesystem::copy_file(std::filesystem::u8path(driver.image), std::filesystem::u8path(path),
                               std::filesystem::copy_options::overwrite_existing);
    test::SetFileCreationTime(path, driver.created);
    return;
  }
  test::CopyImage(L"images\\sampledriver.sys", path);
  if (driver.hasVersion) test::SetVersionResource(path, test::VersionResourceBytes(driver.version));
  {
    // What follows the image proper is no concern of the loader.
    std::ofstream file(std::filesystem::u8path(path), std::ios::binary | std::ios::in | std::ios::out | std::ios::ate);
    const auto size = static_cast<unsigned long>(file.tellp());
    if (size < driver.size) file << std::string(driver.size - size, '\0');
    if (!file) throw std::runtime_error(path + " cannot be written.");
  }
  test::SetFileCreationTime(path, driver.created);
}

/// `text` as INF files hold it: other characters than ASCII in UTF-16, behind a mark that says so.
std::string InfBytes(const std::string& text) {
  if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) return text;
  const std::wstring wide = L'\xFEFF' + WideFromUtf8(text);
  return std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t));
}

void MakePackage(const Package& package) {
  std::string text;
  for (const std::string& line : package.lines) text += line + "\r\n";
  std::ofstream file(std::filesystem::u8path(PackagePath(package)), std::ios::binary);
  file << InfBytes(text);
  file.close();
  if (!file) throw std::runtime_error(PackagePath(package) + " cannot be written.");
}

std::vector<std::string> PciInstances() {
  std::vector<std::string> instances;
  for (const std::string& device : test::RegistrySubkeys(std::string(Enumerators) + "PCI")) {
    const std::string path = "PCI\\" + device;
    for (const std::string& instance : test::RegistrySubkeys(Enumerators + path)) {
      instances.push_back(path + "\\" + instance);
    }
  }
  return instances;
}

test::DeviceSettings DisplayAdapter() {
  test::DeviceSettings adapter;
  adapter.instanceId = "PCI\\VEN_0000&DEV_0000&SUBSYS_00000000&REV_00\\00000000";
  adapter.description = "Wine Adapter";
  adapter.className = "Display";
  adapter.hardwareIds = {"PCI\\VEN_0000&DEV_0000&SUBSYS_00000000&REV_00"};
  return adapter;
}

void ReplaceDisplayAdapterBeside(const std::vector<test::DeviceSettings>& devices) {
  for (const std::string& instance : PciInstances()) {
    const bool isKept =
        std::any_of(devices.begin(), devices.end(), [&](const auto& device) { return device.instanceId == instance; });
    if (!isKept) test::RemoveDevice(instance);
  }
  test::CreateDevice(DisplayAdapter());
}

}  // namespace

void Clear() {
  for (const std::string& name : test::RegistrySubkeys(Services)) {
    if (IsDriverService(name)) test::DeleteRegistryKey(std::string(Services) + "\\" + name);
  }
  for (const char* const enumerator : {"ACPI", "HID", "PCI", "ROOT", "USB", "WINEBUS"}) {
    test::DeleteRegistryKey(std::string(Enumerators) + enumerator);
  }
  for (const std::string& name : FilesLike(test::InfDirectory() + "\\oem*.inf")) {
    DeleteExistingFile(test::InfDirectory() + "\\" + name);
  }
  for (const char* const key : {"SOFTWARE\\Intel", "SOFTWARE\\WOW6432Node\\AMD"}) test::DeleteRegistryKey(key);
}

void ReplaceDisplayAdapter() { ReplaceDisplayAdapterBeside({}); }

void Make(const Description& description) {
  for (const Driver& driver : description.drivers) MakeDriver(driver);
  for (const Service& service : description.services) {
    test::CreateDriverService(service.name, service.imagePath, service.start, service.type);
  }
  for (const Package& package : description.packages) MakePackage(package);
  for (const test::DeviceSettings& device : description.devices) test::CreateDevice(device);
  for (const RegistryText& text : description.registry) {
    test::SetRegistryText(text.key, text.value, text.text);
  }
  for (const std::string& root : description.roots) test::AddTrustedRoot(root);
  for (const std::string& catalog : description.catalogs) test::AddCatalog(catalog);
  Start(description);
}

void Start(const Description& description) {
  ReplaceDisplayAdapterBeside(description.devices);
  for (const Service& service : description.services) {
    if (service.running) test::StartDriverService(service.name);
  }
}

void Remove(const Description& description) {
  for (const std::string& catalog : description.catalogs) test::RemoveCatalog(catalog);
  for (const std::string& root : description.roots) test::RemoveTrustedRoot(root);
  for (const RegistryText& text : description.registry) test::DeleteRegistryKey(text.key);
  for (const test::DeviceSettings& device : description.devices) test::RemoveDevice(device.instanceId);
  for (const Package& package : description.packages) DeleteExistingFile(PackagePath(package));
  for (const Service& service : description.services) test::DeleteDriverService(service.name);
  for (const Driver& driver : description.drivers) DeleteDriver(ImagePath(driver));
}

}  // namespace samplemachine
