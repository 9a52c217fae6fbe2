#include "remembered.h"

#include <algorithm>
#include <cstring>

namespace sweeps {

Remembered::~Remembered() {
  for (const auto& [name, handle] : m_services) CloseServiceHandle(handle);
}

SC_HANDLE Remembered::Service(const std::string& name, const std::function<SC_HANDLE()>& open) {
  const auto known = m_services.find(name);
  if (known != m_services.end()) return known->second;
  const SC_HANDLE handle = open();
  if (handle != nullptr) m_services[name] = handle;
  return handle;
}

BOOL Remembered::Config(SC_HANDLE service, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD* needed,
                        const std::function<BOOL()>& query) {
  const char* const begin = reinterpret_cast<const char*>(config);
  const auto known = m_configs.find(service);
  if (known == m_configs.end()) {
    if (!query()) return FALSE;
    // Its texts stand behind the structure; they are found again at the same distance.
    std::vector<char>& bytes = m_configs[service] = std::vector<char>(begin, begin + size);
    auto* const kept = reinterpret_cast<QUERY_SERVICE_CONFIGA*>(bytes.data());
    for (char** const text : {&kept->lpBinaryPathName, &kept->lpLoadOrderGroup, &kept->lpDependencies,
                              &kept->lpServiceStartName, &kept->lpDisplayName}) {
      if (*text != nullptr) *text = bytes.data() + (*text - begin);
    }
    return TRUE;
  }
  const std::vector<char>& bytes = known->second;
  std::copy_n(bytes.begin(), std::min<std::size_t>(bytes.size(), size), reinterpret_cast<char*>(config));
  for (char** const text : {&config->lpBinaryPathName, &config->lpLoadOrderGroup, &config->lpDependencies,
                            &config->lpServiceStartName, &config->lpDisplayName}) {
    if (*text != nullptr) *text = reinterpret_cast<char*>(config) + (*text - bytes.data());
  }
  *needed = size;
  return TRUE;
}

DWORD Remembered::VersionSize(const std::string& path, const std::function<DWORD()>& ask) {
  const auto known = m_versionSizes.find(path);
  if (known != m_versionSizes.end()) return known->second;
  return m_versionSizes[path] = ask();
}

BOOL Remembered::Version(const std::string& path, void* data, DWORD size, const std::function<BOOL()>& ask) {
  const auto known = m_versions.find(path);
  if (known != m_versions.end()) {
    std::memcpy(data, known->second.data(), std::min<std::size_t>(known->second.size(), size));
    return TRUE;
  }
  if (!ask()) return FALSE;
  const char* const begin = static_cast<const char*>(data);
  m_versions[path] = std::vector<char>(begin, begin + size);
  return TRUE;
}

const std::vector<Orvane::PciDeviceRecord>& Remembered::Devices(
    const std::function<void(std::vector<Orvane::PciDeviceRecord>&)>& ask) {
  if (!m_devices) ask(m_devices.emplace());
  return *m_devices;
}

}  // namespace sweeps
