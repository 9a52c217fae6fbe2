/// @file
/// The log lines of one act of a test.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "log.h"

namespace test {

struct LogLine {
  int level;
  std::string text;
};

inline bool operator==(const LogLine& a, const LogLine& b) { return a.level == b.level && a.text == b.text; }
inline std::ostream& operator<<(std::ostream& stream, const LogLine& line) {
  return stream << "{" << line.level << ", \"" << line.text << "\"}";
}

/// Collects the lines of all modules while it lives.
class LogCapture {
 public:
  LogCapture() {
    Orvane::SetLogLevel(4);
    Orvane::LogToFunction([this](int level, const char*, int, const std::string& text) {
      m_lines.push_back({level, text});
    });
  }
  ~LogCapture() { Orvane::LogToNothing(); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// The lines so far, oldest first; they are not kept.
  std::vector<LogLine> Take() {
    std::vector<LogLine> lines;
    lines.swap(m_lines);
    return lines;
  }

 private:
  std::vector<LogLine> m_lines;
};

}  // namespace test
