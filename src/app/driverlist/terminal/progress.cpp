#include "terminal/progress.h"

#include <windows.h>

#include "inventory/progress.h"
#include "log.h"
#include "terminal/output.h"
#include "terminal/text.h"

namespace driverlist {

Progress::Progress(bool wanted) : m_isOn(wanted && StandardErrorWidth() > 0) {
  if (!m_isOn) return;
  Orvane::SetLogLevel(4);
  Orvane::LogToFunction([this](int, const char*, int, const std::string& line) {
    if (const auto text = inventory::ProgressText(line)) Show("reading " + *text);
  });
}

Progress::~Progress() {
  if (!m_isOn) return;
  Orvane::LogToNothing();
  Clear();
}

void Progress::Clear() const {
  if (m_columns > 0) WriteStandardError("\r" + std::string(m_columns, ' ') + "\r");
}

void Progress::Show(const std::string& text) {
  if (!m_isOn) return;
  // Writing to a terminal takes longer than reading a driver, so not every step is shown. A new phase always is, since
  // its next step may take long.
  constexpr unsigned long long interval = 100;
  const unsigned long long now = GetTickCount64();
  const std::string topic = text.substr(0, text.find(' '));
  if (topic == m_topic && now - m_shownAt < interval) return;
  m_shownAt = now;
  m_topic = topic;
  const std::string line = Cut(Visible(text), StandardErrorWidth());
  const std::size_t columns = Columns(line);
  const Uninterrupted change;
  WriteStandardError("\r" + line + std::string(m_columns > columns ? m_columns - columns : 0, ' '));
  m_columns = columns;
}

}  // namespace driverlist
