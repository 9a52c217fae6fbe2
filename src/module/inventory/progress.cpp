#include "inventory/progress.h"

#include "loglines.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

namespace loglines = Orvane::loglines;

/// The rest of a line that begins with `prefix`.
std::optional<std::string_view> Behind(std::string_view prefix, std::string_view line) {
  if (line.substr(0, prefix.size()) != prefix) return std::nullopt;
  return line.substr(prefix.size());
}

/// The part of a line before its first `mark`; nullopt without a mark.
std::optional<std::string_view> Before(std::string_view mark, std::string_view line) {
  const std::size_t at = line.find(mark);
  if (at == std::string_view::npos) return std::nullopt;
  return line.substr(0, at);
}

std::string_view FileName(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

std::string Named(const char* what, std::string_view name) {
  return std::string(what) + " " + Orvane::Utf8FromAnsi(name);
}

}  // namespace

std::optional<std::string> ProgressText(std::string_view logLine) {
  if (logLine == loglines::DevicesBegin) return "devices";
  if (logLine == loglines::ServicesBegin) return "services";
  if (logLine == loglines::OemPackagesBegin) return "OEM packages";
  if (const auto path = Behind(loglines::PackageInf, logLine)) return Named("package", FileName(*path));
  if (const auto driver = Behind(loglines::DriverName, logLine)) {
    return Named("driver", Before(loglines::DriverVersion, *driver).value_or(*driver));
  }
  // Other lines with this sign contain it twice.
  const auto device = Before(loglines::DeviceInf, logLine);
  if (!device || Before(loglines::DeviceInf, logLine.substr(device->size() + loglines::DeviceInf.size())))
    return std::nullopt;
  return Named("device", *device);
}

}  // namespace inventory
