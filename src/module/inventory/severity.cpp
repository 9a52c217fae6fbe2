#include "inventory/severity.h"

#include <algorithm>

namespace inventory {

std::string_view SeverityName(Severity severity) {
  switch (severity) {
    case Severity::Critical:
      return "critical";
    case Severity::High:
      return "high";
    case Severity::Medium:
      return "medium";
    case Severity::Low:
      break;
  }
  return "low";
}

std::optional<Severity> SeverityNamed(std::string_view name) {
  const auto found = std::find_if(Severities.begin(), Severities.end(),
                                  [name](Severity severity) { return SeverityName(severity) == name; });
  return found == Severities.end() ? std::nullopt : std::optional<Severity>(*found);
}

}  // namespace inventory
