#include "faults.h"

#include <algorithm>

namespace sweeps {

bool Faults::Hits(const char* function, const std::string& subject, std::initializer_list<DWORD> errors) {
  m_calls.push_back({function, subject, std::string(), errors});
  for (const Fault& fault : m_faults) {
    if (fault.call != m_calls.size() - 1) continue;
    SetLastError(m_calls.back().errors.at(fault.error));
    return true;
  }
  return false;
}

void Faults::Open(const char* kind, void* handle) {
  if (handle != nullptr && handle != INVALID_HANDLE_VALUE) m_open.emplace_back(kind, handle);
}

void Faults::Closed(const char* kind, void* handle) {
  const auto open = std::find(m_open.begin(), m_open.end(), std::make_pair(std::string(kind), handle));
  if (open == m_open.end()) {
    m_trouble.push_back("closes a " + std::string(kind) + " that is not open");
  } else {
    m_open.erase(open);
  }
}

std::vector<std::string> Faults::Trouble() const {
  std::vector<std::string> trouble = m_trouble;
  for (const auto& [kind, handle] : m_open) trouble.push_back("leaves a " + kind + " open");
  return trouble;
}

}  // namespace sweeps
