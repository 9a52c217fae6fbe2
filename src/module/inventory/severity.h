/// @file
/// How urgent something is, on one scale for everything that the program reports.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace inventory {

/// The worst first.
enum class Severity {
  /// Cannot wait.
  Critical,
  High,
  Medium,
  /// Worth knowing.
  Low
};

constexpr std::array<Severity, 4> Severities = {Severity::Critical, Severity::High, Severity::Medium, Severity::Low};

/// "critical", "high", "medium" or "low".
std::string_view SeverityName(Severity severity);

/// The severity of that name.
std::optional<Severity> SeverityNamed(std::string_view name);

/// Whether `severity` is as bad as `limit` or worse.
constexpr bool IsAtLeast(Severity severity, Severity limit) { return severity <= limit; }

}  // namespace inventory
