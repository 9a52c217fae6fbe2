/// @file
/// What the fuzzers share: rules spelled out byte by byte, and the end of the process where the library does something
/// else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace model {

inline std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    char escaped[8];
    std::snprintf(escaped, sizeof(escaped), c >= ' ' && c <= '~' ? "%c" : "\\x%02X", static_cast<unsigned char>(c));
    quoted += escaped;
  }
  return quoted + "\"";
}

/// Ends the process, which the fuzzer takes for a finding, unless both are the same.
inline void Expect(const char* rule, const std::string& actual, const std::string& expected) {
  if (actual == expected) return;
  std::fprintf(stderr, "%s: %s instead of %s\n", rule, Quoted(actual).c_str(), Quoted(expected).c_str());
  std::abort();
}

inline void Expect(const char* rule, int actual, int expected) {
  Expect(rule, std::to_string(actual), std::to_string(expected));
}

/// In the classic locale, which the fuzzers run in.
inline std::string Lower(const std::string& text) {
  std::string lower;
  for (const char c : text) {
    if (c >= 'A' && c <= 'Z') {
      lower += static_cast<char>(c - 'A' + 'a');
    } else {
      lower += c;
    }
  }
  return lower;
}

/// Whether `part` stands in `text` at `position`.
inline bool StandsAt(const std::string& text, std::size_t position, const std::string& part) {
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (position + i >= text.size() || text[position + i] != part[i]) return false;
  }
  return true;
}

/// Position of the first `part`; -1 when there is none.
inline int First(const std::string& text, const std::string& part) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (StandsAt(text, i, part)) return static_cast<int>(i);
  }
  return -1;
}

inline int Last(const std::string& text, const std::string& part) {
  int last = -1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (StandsAt(text, i, part)) last = static_cast<int>(i);
  }
  return last;
}

/// The bytes of `text` from `begin` up to `end`.
inline std::string Cut(const std::string& text, int begin, int end) {
  std::string cut;
  for (int i = begin; i < end; ++i) cut += text.at(static_cast<std::size_t>(i));
  return cut;
}

inline int Length(const std::string& text) { return static_cast<int>(text.size()); }

}  // namespace model
