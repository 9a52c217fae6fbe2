/// @file
/// A machine that tests may change: its driver services, its registry and its files.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace test {

/// Whether this machine was made to be changed: a Wine prefix that preparescratch.exe prepared, or any machine whose user says
/// so by setting the environment variable DRIVERINFO_TESTS_MAY_CHANGE_THIS_MACHINE.
bool MayChangeThisMachine();

/// Marks the Wine prefix as one that tests may change.
void MarkAsScratchMachine();

/// Skips its tests, saying so, on a machine that is not to be changed.
class ScratchMachine : public ::testing::Test {
 protected:
  void SetUp() override;
};

/// The system directory, such as "C:\windows\system32".
std::string SystemDirectory();

/// The folder of this test program, which also holds the driver images that the build makes.
std::string ProgramDirectory();

/// A driver service while it lives. Its registry key goes with it.
class DriverService {
 public:
  /// The image path is registered as it stands, also as the value "ImagePath" of the key; an empty one is in neither.
  DriverService(const std::string& name, const std::string& imagePath, DWORD startType = SERVICE_DEMAND_START,
                DWORD serviceType = SERVICE_KERNEL_DRIVER);
  ~DriverService();
  DriverService(const DriverService&) = delete;
  DriverService& operator=(const DriverService&) = delete;

 private:
  SC_HANDLE m_service;
  std::string m_key;
};

/// A registry value below HKEY_LOCAL_MACHINE, in the 64-bit view, while it lives. Keys made for it go with it.
class RegistryValue {
 public:
  RegistryValue(const std::string& key, const std::string& name, DWORD type, const std::string& bytes);
  ~RegistryValue();
  RegistryValue(const RegistryValue&) = delete;
  RegistryValue& operator=(const RegistryValue&) = delete;

 private:
  std::string m_key;
  std::string m_name;
  bool m_madeKey;
};

/// A registry key without values below HKEY_LOCAL_MACHINE, in the 64-bit view, while it lives.
class RegistryKey {
 public:
  explicit RegistryKey(const std::string& key);
  ~RegistryKey();
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

 private:
  std::string m_key;
};

/// A file while it lives; folders made for it go with it. Its creation time is 21 June 2006, 13:05:09 UTC.
class ScratchFile {
 public:
  /// A file of `size` zero bytes.
  ScratchFile(const std::string& path, std::size_t size);
  /// A copy of `image`, one of the driver images beside the test program.
  ScratchFile(const std::string& path, const std::string& image);
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

 private:
  void MakeFolders();
  void SetCreationTime();

  std::string m_path;
  std::string m_firstFolderMade;
};

/// An entry of the process's environment while it lives; the former value comes back.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const std::string& name, const std::string& value);
  ~EnvironmentVariable();
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  std::string m_name;
  std::string m_former;
};

}  // namespace test
