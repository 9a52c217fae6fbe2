#include "progress.h"

#include <windows.h>

#include <algorithm>
#include <string_view>

#include "log.h"
#include "output.h"
#include "unicode.h"

namespace driverlist {
namespace {

/// What stands behind `prefix`, up to the next blank or the end.
std::optional<std::string> WordBehind(std::string_view prefix, const std::string& line) {
  if (line.compare(0, prefix.size(), prefix) != 0) return std::nullopt;
  return line.substr(prefix.size(), line.find(' ', prefix.size()) - prefix.size());
}

/// The identity of a line such as "8086-15F3-1028-0A5C|C:\windows\inf\oem1.inf".
std::optional<std::string> Device(const std::string& line) {
  const std::size_t bar = line.find('|');
  if (bar == std::string::npos || line.find('|', bar + 1) != std::string::npos) return std::nullopt;
  return line.substr(0, bar);
}

}  // namespace

std::optional<std::string> ProgressText(const std::string& logLine) {
  constexpr std::string_view parse = "Start to parse ";
  if (logLine == "Start list exist device driver files.") return "devices";
  if (logLine == "Start to list registered driver files.") return "services";
  if (logLine == "Start to list driver files from OemInf.") return "OEM packages";
  if (logLine.compare(0, parse.size(), parse) == 0) {
    return "package " + Utf8FromAnsi(logLine.substr(std::max(logLine.rfind('\\') + 1, parse.size())));
  }
  if (const auto name = WordBehind("DRIVERINFO.name=", logLine)) return "driver " + Utf8FromAnsi(*name);
  if (const auto device = Device(logLine)) return "device " + Utf8FromAnsi(*device);
  return std::nullopt;
}

Progress::Progress(bool wanted) : m_isOn(wanted && StandardErrorWidth() > 0) {
  if (!m_isOn) return;
  Orvane::SetLogLevel(4);
  Orvane::LogToFunction([this](int, const char*, int, const std::string& line) {
    if (const auto text = ProgressText(line)) Show("reading " + *text);
  });
}

Progress::~Progress() {
  if (!m_isOn) return;
  Orvane::LogToNothing();
  if (m_columns > 0) WriteStandardError("\r" + std::string(m_columns, ' ') + "\r");
}

void Progress::Show(const std::string& text) {
  // Writing to a terminal takes longer than reading a driver.
  constexpr unsigned long long interval = 100;
  const unsigned long long now = GetTickCount64();
  if (m_columns > 0 && now - m_shownAt < interval) return;
  m_shownAt = now;
  const std::string line = Cut(Printable(text), StandardErrorWidth());
  const std::size_t columns = Columns(line);
  WriteStandardError("\r" + line + std::string(m_columns > columns ? m_columns - columns : 0, ' '));
  m_columns = columns;
}

}  // namespace driverlist
