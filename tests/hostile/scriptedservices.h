/// @file
/// A service control manager whose driver services are of the test's making: as many as wanted, at the cost of none.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "importhook.h"

namespace test {

class ScriptedServices {
 public:
  /// Called when the library opens service `index`.
  using Open = std::function<void(std::size_t index)>;
  /// Fills the library's buffer of `size` bytes with the configuration of the service that is open.
  using Configure = std::function<BOOL(QUERY_SERVICE_CONFIGA* config, DWORD size)>;

  /// One service per entry of `names`, in state `states` where that has as many entries.
  ScriptedServices(HMODULE module, std::vector<std::string> names, std::vector<DWORD> states, Open open,
                   Configure configure);
  ScriptedServices(const ScriptedServices&) = delete;
  ScriptedServices& operator=(const ScriptedServices&) = delete;

  /// How many handles the library holds now.
  int OpenHandles() const { return m_openHandles; }

 private:
  BOOL Enumerate(ENUM_SERVICE_STATUSA* entries, DWORD size, DWORD* needed, DWORD* count) const;
  SC_HANDLE NewHandle();

  std::vector<std::string> m_names;
  std::vector<DWORD> m_states;
  DWORD m_size;
  std::size_t m_next = 0;
  int m_openHandles = 0;
  ImportHook<&OpenSCManagerA> m_openManager;
  ImportHook<&EnumServicesStatusA> m_enumerate;
  ImportHook<&OpenServiceA> m_open;
  ImportHook<&QueryServiceConfigA> m_query;
  ImportHook<&CloseServiceHandle> m_close;
};

}  // namespace test
