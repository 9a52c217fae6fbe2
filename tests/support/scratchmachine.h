/// @file
/// A machine that tests may change: its driver services, registry, devices and files, each for the life of an object.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "machine.h"

namespace test {

/// Whether tests may change this machine: a private Wine prefix, or any machine whose user says so by setting the
/// environment variable DRIVERINFO_TESTS_MAY_CHANGE_THIS_MACHINE. What is there already they leave alone.
bool MayChangeThisMachine();

/// Skips its tests, saying so, on a machine that is not to be changed.
class ScratchMachine : public ::testing::Test {
 protected:
  void SetUp() override;
};

/// Base of what cannot be copied.
class Scratch {
 public:
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

 protected:
  Scratch() = default;
  ~Scratch() = default;
};

class DriverService : Scratch {
 public:
  DriverService(const std::string& name, const std::string& imagePath, DWORD startType = SERVICE_DEMAND_START,
                DWORD serviceType = SERVICE_KERNEL_DRIVER)
      : m_name(name) {
    CreateDriverService(name, imagePath, startType, serviceType);
  }
  ~DriverService() { DeleteDriverService(m_name); }

 private:
  std::string m_name;
};

/// Keys made for the value go with it. A value of a service of the test replaces the former one.
class RegistryValue : Scratch {
 public:
  RegistryValue(const std::string& key, const std::string& name, DWORD type, const std::string& bytes)
      : m_key(key), m_name(name), m_madeKey(SetRegistryValue(key, name, type, bytes)) {}
  ~RegistryValue() { m_madeKey ? DeleteRegistryKey(m_key) : DeleteRegistryValue(m_key, m_name); }

 private:
  std::string m_key;
  std::string m_name;
  bool m_madeKey;
};

/// A key without values, that was not there.
class RegistryKey : Scratch {
 public:
  explicit RegistryKey(const std::string& key) : m_key(key) {
    if (!MakeRegistryKey(key)) throw std::runtime_error(key + " exists already");
  }
  ~RegistryKey() { DeleteRegistryKey(m_key); }

 private:
  std::string m_key;
};

class Device : Scratch {
 public:
  explicit Device(const DeviceSettings& settings) : m_instanceId(settings.instanceId) { CreateDevice(settings); }
  ~Device() { RemoveDevice(m_instanceId); }

 private:
  std::string m_instanceId;
};

/// A file that was not there. Folders made for it go with it. Its creation time is 21 June 2006, 13:05:09 UTC.
class ScratchFile : Scratch {
 public:
  /// A file of `size` zero bytes.
  ScratchFile(const std::string& path, std::size_t size);
  /// A copy of `image`, one of the driver images beside the test program.
  ScratchFile(const std::string& path, const std::wstring& image);
  /// A file of text lines, ended by "\r\n".
  ScratchFile(const std::string& path, const std::vector<std::string>& lines);
  ~ScratchFile();

  const std::string& Path() const { return m_path; }

 private:
  void RefuseExisting() const;

  std::string m_path;
  std::string m_firstFolderMade;
};

/// An entry of the process's environment; the former value comes back.
class EnvironmentVariable : Scratch {
 public:
  EnvironmentVariable(const std::string& name, const std::string& value);
  ~EnvironmentVariable();

 private:
  std::string m_name;
  std::string m_former;
};

}  // namespace test
