#include "scratchmachine.h"

#include <cstdlib>
#include <stdexcept>

namespace test {
namespace {

constexpr char MarkKey[] = "SOFTWARE\\Orvane\\Tests";
constexpr REGSAM Access = KEY_READ | KEY_WRITE | KEY_WOW64_64KEY;

void Require(bool success, const std::string& what) {
  if (!success) throw std::runtime_error(what + " failed with error " + std::to_string(GetLastError()));
}

/// True when the key did not exist before.
bool MakeKey(const std::string& path, HKEY* key) {
  DWORD disposition = 0;
  const LSTATUS status =
      RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, Access, nullptr, key, &disposition);
  SetLastError(static_cast<DWORD>(status));
  Require(status == ERROR_SUCCESS, "creating the key " + path);
  return disposition == REG_CREATED_NEW_KEY;
}

void DeleteKey(const std::string& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, Access | DELETE, &key) != ERROR_SUCCESS) return;
  RegDeleteTreeA(key, nullptr);
  RegCloseKey(key);
  RegDeleteKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), KEY_WOW64_64KEY, 0);
}

void DeleteValue(const std::string& path, const std::string& name) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, Access, &key) != ERROR_SUCCESS) return;
  RegDeleteValueA(key, name.c_str());
  RegCloseKey(key);
}

}  // namespace

bool MayChangeThisMachine() {
  if (std::getenv("DRIVERINFO_TESTS_MAY_CHANGE_THIS_MACHINE") != nullptr) return true;
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, MarkKey, 0, KEY_READ | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

void MarkAsScratchMachine() {
  HKEY key = nullptr;
  MakeKey(MarkKey, &key);
  RegCloseKey(key);
}

void ScratchMachine::SetUp() {
  if (!MayChangeThisMachine()) {
    GTEST_SKIP() << "changes services, registry or system files, and this is not a scratch machine; set "
                    "DRIVERINFO_TESTS_MAY_CHANGE_THIS_MACHINE to run it all the same";
  }
}

std::string SystemDirectory() {
  char path[MAX_PATH];
  return std::string(path, GetSystemDirectoryA(path, MAX_PATH));
}

std::string ProgramDirectory() {
  char path[MAX_PATH];
  const std::string program(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
  return program.substr(0, program.rfind('\\'));
}

DriverService::DriverService(const std::string& name, const std::string& imagePath, DWORD startType, DWORD serviceType)
    : m_key("System\\CurrentControlSet\\Services\\" + name) {
  const SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CREATE_SERVICE);
  Require(manager != nullptr, "opening the service control manager");
  // A service cannot be created without a path, but left without one.
  m_service =
      CreateServiceA(manager, name.c_str(), ("Display name of " + name).c_str(), DELETE | SERVICE_CHANGE_CONFIG,
                     serviceType, startType, SERVICE_ERROR_NORMAL, imagePath.empty() ? "none" : imagePath.c_str(),
                     nullptr, nullptr, nullptr, nullptr, nullptr);
  const DWORD error = GetLastError();
  CloseServiceHandle(manager);
  SetLastError(error);
  Require(m_service != nullptr, "creating the service " + name);
  if (!imagePath.empty()) return;
  Require(ChangeServiceConfigA(m_service, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, "", nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr),
          "taking away the path of " + name);
  DeleteValue(m_key, "ImagePath");
}

DriverService::~DriverService() {
  DeleteService(m_service);
  CloseServiceHandle(m_service);
  DeleteKey(m_key);
}

RegistryValue::RegistryValue(const std::string& key, const std::string& name, DWORD type, const std::string& bytes)
    : m_key(key), m_name(name) {
  HKEY handle = nullptr;
  m_madeKey = MakeKey(key, &handle);
  const LSTATUS status = RegSetValueExA(handle, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                                        static_cast<DWORD>(bytes.size()));
  RegCloseKey(handle);
  SetLastError(static_cast<DWORD>(status));
  Require(status == ERROR_SUCCESS, "setting the value " + name + " of " + key);
}

RegistryValue::~RegistryValue() {
  if (m_madeKey) {
    DeleteKey(m_key);
    return;
  }
  DeleteValue(m_key, m_name);
}

RegistryKey::RegistryKey(const std::string& key) : m_key(key) {
  HKEY handle = nullptr;
  MakeKey(key, &handle);
  RegCloseKey(handle);
}

RegistryKey::~RegistryKey() { DeleteKey(m_key); }

ScratchFile::ScratchFile(const std::string& path, std::size_t size) : m_path(path) {
  MakeFolders();
  const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  Require(file != INVALID_HANDLE_VALUE, "creating " + path);
  LARGE_INTEGER end;
  end.QuadPart = static_cast<LONGLONG>(size);
  const bool sized = SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file);
  CloseHandle(file);
  Require(sized, "sizing " + path);
  SetCreationTime();
}

ScratchFile::ScratchFile(const std::string& path, const std::string& image) : m_path(path) {
  MakeFolders();
  Require(CopyFileA((ProgramDirectory() + "\\" + image).c_str(), path.c_str(), FALSE),
          "copying " + image + " to " + path);
  SetCreationTime();
}

ScratchFile::~ScratchFile() {
  DeleteFileA(m_path.c_str());
  if (m_firstFolderMade.empty()) return;
  for (std::string folder = m_path.substr(0, m_path.rfind('\\')); folder.size() >= m_firstFolderMade.size();
       folder.resize(folder.rfind('\\'))) {
    RemoveDirectoryA(folder.c_str());
  }
}

void ScratchFile::MakeFolders() {
  for (std::size_t end = m_path.find('\\', 3); end != std::string::npos; end = m_path.find('\\', end + 1)) {
    const std::string folder = m_path.substr(0, end);
    if (CreateDirectoryA(folder.c_str(), nullptr) && m_firstFolderMade.empty()) m_firstFolderMade = folder;
  }
}

void ScratchFile::SetCreationTime() {
  const SYSTEMTIME time = {2006, 6, 3, 21, 13, 5, 9, 0};
  FILETIME fileTime;
  SystemTimeToFileTime(&time, &fileTime);
  const HANDLE file = CreateFileA(m_path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  // Wine has no creation time of its own for a file and shows the time of the last write.
  const bool set = SetFileTime(file, &fileTime, nullptr, &fileTime) != FALSE;
  CloseHandle(file);
  Require(set, "setting the time of " + m_path);
}

EnvironmentVariable::EnvironmentVariable(const std::string& name, const std::string& value) : m_name(name) {
  if (const char* const former = std::getenv(name.c_str())) m_former = former;
  _putenv_s(name.c_str(), value.c_str());
}

EnvironmentVariable::~EnvironmentVariable() { _putenv_s(m_name.c_str(), m_former.c_str()); }

}  // namespace test
