/// @file
/// Answers of Windows that are the same in every listing of one machine. Windows gives each once; under Wine they take
/// a millisecond each, and a sweep asks for them thousands of times.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "pciinfo.h"

namespace sweeps {

class Remembered {
 public:
  Remembered() = default;
  ~Remembered();
  Remembered(const Remembered&) = delete;
  Remembered& operator=(const Remembered&) = delete;

  /// The handle of a service; of the service control manager for no name. It stays open as long as this object lives.
  SC_HANDLE Service(const std::string& name, const std::function<SC_HANDLE()>& open);

  /// What QueryServiceConfigA puts into `config`.
  BOOL Config(SC_HANDLE service, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* needed,
              const std::function<BOOL()>& query);

  DWORD VersionSize(const std::string& path, const std::function<DWORD()>& ask);
  /// What GetFileVersionInfoA puts into `data`.
  BOOL Version(const std::string& path, void* data, DWORD size, const std::function<BOOL()>& ask);

  /// What the device inventory lists.
  const std::vector<Orvane::PciDeviceRecord>& Devices(
      const std::function<void(std::vector<Orvane::PciDeviceRecord>&)>& ask);

 private:
  std::map<std::string, SC_HANDLE> m_services;
  std::map<SC_HANDLE, std::vector<char>> m_configs;
  std::map<std::string, DWORD> m_versionSizes;
  std::map<std::string, std::vector<char>> m_versions;
  std::optional<std::vector<Orvane::PciDeviceRecord>> m_devices;
};

}  // namespace sweeps
