/// @file
/// The calls that the library makes of the platform, numbered, and the one of them that fails.
#pragma once

#include <windows.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace sweeps {

/// One call of the platform.
struct Call {
  std::string function;
  /// What it asks about: a service, a key, a path, a section, the number of a field.
  std::string subject;
  /// The text that it gave, where one came.
  std::string answer;
  /// The last errors, or statuses, with which it is documented to fail.
  std::vector<DWORD> errors;
};

/// A call that is to fail, by its number, with one of its errors.
struct Fault {
  std::size_t call;
  std::size_t error;
};

/// Numbers the calls of one listing, lets some of them fail, and knows what is open.
class Faults {
 public:
  explicit Faults(std::vector<Fault> faults) : m_faults(std::move(faults)) {}

  /// Numbers a call. When it is one to fail: true, with the last error set.
  bool Hits(const char* function, const std::string& subject, std::initializer_list<DWORD> errors);

  /// The text that the last numbered call gave.
  void Answer(const std::string& text) { m_calls.back().answer = text; }

  /// Something was opened; returns it. Null and INVALID_HANDLE_VALUE are nothing.
  template <typename Handle>
  Handle Opened(const char* kind, Handle handle) {
    Open(kind, reinterpret_cast<void*>(handle));
    return handle;
  }
  /// Something is closed that must be open.
  void Closed(const char* kind, void* handle);

  const std::vector<Call>& Calls() const { return m_calls; }

  /// What was left open, and what was closed without being open, in words.
  std::vector<std::string> Trouble() const;

 private:
  void Open(const char* kind, void* handle);

  std::vector<Fault> m_faults;
  std::vector<Call> m_calls;
  std::vector<std::pair<std::string, void*>> m_open;
  std::vector<std::string> m_trouble;
};

}  // namespace sweeps
