#include <array>

#include "servicedrivers.h"

namespace Orvane {
namespace {

const std::array<std::string, 8> ServiceStateNames = {"Reserved", "Stopped",          "Start Pending", "Stop Pending",
                                                      "Running",  "Continue Pending", "Pause Pending", "Paused"};
const std::array<std::string, 5> ServiceStartTypeNames = {"Boot Start", "System Start", "Automatic", "Manual",
                                                          "Disabled"};

template <std::size_t Size>
std::string NameAt(const std::array<std::string, Size>& names, DWORD index) {
  return index < Size ? names[index] : std::string();
}

}  // namespace

std::string ServiceStateName(DWORD state) { return NameAt(ServiceStateNames, state); }

std::string ServiceStartTypeName(DWORD startType) { return NameAt(ServiceStartTypeNames, startType); }

}  // namespace Orvane
