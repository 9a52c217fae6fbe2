#include "scriptedservices.h"

#include <cstring>
#include <stdexcept>

namespace test {

ScriptedServices::ScriptedServices(HMODULE module, std::vector<std::string> names, std::vector<DWORD> states, Open open,
                                   Configure configure)
    : m_names(std::move(names)),
      m_states(std::move(states)),
      m_size(static_cast<DWORD>(m_names.size() * sizeof(ENUM_SERVICE_STATUSA))),
      m_openManager(module, "OpenSCManagerA", [this](const char*, const char*, DWORD) { return NewHandle(); }),
      m_enumerate(module, "EnumServicesStatusA",
                  [this](SC_HANDLE, DWORD, DWORD, ENUM_SERVICE_STATUSA* entries, DWORD size, DWORD* needed,
                         DWORD* count, DWORD*) { return Enumerate(entries, size, needed, count); }),
      m_open(module, "OpenServiceA",
             [this, open = std::move(open)](SC_HANDLE, const char* name, DWORD) {
               if (m_names.at(m_next) != name) throw std::runtime_error("another service is opened");
               open(m_next++);
               return NewHandle();
             }),
      m_query(module, "QueryServiceConfigA",
              [configure = std::move(configure)](SC_HANDLE, QUERY_SERVICE_CONFIGA* config, DWORD size, DWORD*) {
                return configure(config, size);
              }),
      m_close(module, "CloseServiceHandle", [this](SC_HANDLE) {
        --m_openHandles;
        return TRUE;
      }) {
  for (const std::string& name : m_names) m_size += static_cast<DWORD>(name.size() + 1);
}

BOOL ScriptedServices::Enumerate(ENUM_SERVICE_STATUSA* entries, DWORD size, DWORD* needed, DWORD* count) const {
  *needed = m_size;
  *count = 0;
  if (size < m_size) {
    SetLastError(ERROR_MORE_DATA);
    return FALSE;
  }
  char* text = reinterpret_cast<char*>(entries + m_names.size());
  for (std::size_t i = 0; i < m_names.size(); ++i) {
    std::memcpy(text, m_names[i].c_str(), m_names[i].size() + 1);
    entries[i] = {};
    entries[i].lpServiceName = text;
    entries[i].lpDisplayName = text;
    entries[i].ServiceStatus.dwCurrentState = i < m_states.size() ? m_states[i] : SERVICE_STOPPED;
    text += m_names[i].size() + 1;
  }
  *needed = 0;
  *count = static_cast<DWORD>(m_names.size());
  return TRUE;
}

SC_HANDLE ScriptedServices::NewHandle() {
  ++m_openHandles;
  return reinterpret_cast<SC_HANDLE>(this);
}

}  // namespace test
