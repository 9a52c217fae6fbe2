#include "samplemachine.h"

#include <fstream>
#include <stdexcept>

#include "machine.h"

namespace samplemachine {
namespace {

constexpr char Services[] = "System\\CurrentControlSet\\Services";
constexpr char Enumerators[] = "System\\CurrentControlSet\\Enum\\";

std::string DriverPath(const Driver& driver) { return test::SystemDirectory() + "\\" + driver.file; }

std::string PackagePath(const Package& package) { return test::InfDirectory() + "\\" + package.inf; }

bool IsDriverService(const std::string& name) {
  DWORD type = 0;
  DWORD size = sizeof(type);
  return RegGetValueA(HKEY_LOCAL_MACHINE, (std::string(Services) + "\\" + name).c_str(), "Type", RRF_RT_REG_DWORD,
                      nullptr, &type, &size) == ERROR_SUCCESS &&
         (type & SERVICE_DRIVER) != 0;
}

std::vector<std::string> FilesLike(const std::string& pattern) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA file;
  const HANDLE found = FindFirstFileA(pattern.c_str(), &file);
  if (found == INVALID_HANDLE_VALUE) return names;
  do {
    names.emplace_back(file.cFileName);
  } while (FindNextFileA(found, &file));
  FindClose(found);
  return names;
}

void MakeDriver(const Driver& driver) {
  const std::string path = DriverPath(driver);
  test::CopyImage(L"images\\sampledriver.sys", path);
  if (driver.hasVersion) test::SetVersionResource(path, test::VersionResourceBytes(driver.version));
  {
    // What follows the image proper is no concern of the loader.
    std::ofstream file(path, std::ios::binary | std::ios::in | std::ios::out | std::ios::ate);
    const auto size = static_cast<unsigned long>(file.tellp());
    if (size < driver.size) file << std::string(driver.size - size, '\0');
    if (!file) throw std::runtime_error(path + " cannot be written.");
  }
  test::SetFileCreationTime(path, driver.created);
}

void MakePackage(const Package& package) {
  std::ofstream file(PackagePath(package), std::ios::binary);
  for (const std::string& line : package.lines) file << line << "\r\n";
  file.close();
  if (!file) throw std::runtime_error(PackagePath(package) + " cannot be written.");
}

}  // namespace

void Clear() {
  for (const std::string& name : test::RegistrySubkeys(Services)) {
    if (IsDriverService(name)) test::DeleteRegistryKey(std::string(Services) + "\\" + name);
  }
  for (const char* const enumerator : {"PCI", "ACPI"}) test::DeleteRegistryKey(std::string(Enumerators) + enumerator);
  for (const std::string& name : FilesLike(test::InfDirectory() + "\\oem*.inf")) {
    DeleteFileA((test::InfDirectory() + "\\" + name).c_str());
  }
  for (const char* const key : {"SOFTWARE\\Intel", "SOFTWARE\\WOW6432Node\\AMD"}) test::DeleteRegistryKey(key);
}

void Make(const Description& description) {
  for (const Driver& driver : description.drivers) MakeDriver(driver);
  for (const Service& service : description.services) {
    test::CreateDriverService(service.name, service.imagePath, service.start, service.type);
  }
  for (const Package& package : description.packages) MakePackage(package);
  for (const test::DeviceSettings& device : description.devices) test::CreateDevice(device);
  for (const RegistryText& text : description.registry) {
    test::SetRegistryValue(text.key, text.value, REG_SZ, text.text + '\0');
  }
  Start(description);
}

void Start(const Description& description) {
  for (const Service& service : description.services) {
    if (service.running) test::StartDriverService(service.name);
  }
}

void Remove(const Description& description) {
  for (const RegistryText& text : description.registry) test::DeleteRegistryKey(text.key);
  for (const test::DeviceSettings& device : description.devices) test::RemoveDevice(device.instanceId);
  for (const Package& package : description.packages) DeleteFileA(PackagePath(package).c_str());
  for (const Service& service : description.services) test::DeleteDriverService(service.name);
  for (const Driver& driver : description.drivers) DeleteFileA(DriverPath(driver).c_str());
}

}  // namespace samplemachine
