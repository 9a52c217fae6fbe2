/// @file
/// The platform calls that one module makes, to show that two listings ask the same.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace bench {

/// While it lives, records the calls that a module makes of the functions by which drivers are found: those of the
/// service control manager, the registry, the Setup API, version resources, files, directories and times, and
/// GetPciInfo. Calls through pointers that the module looked up when it was loaded count too. One at a time.
class CallTrace {
 public:
  /// Throws std::runtime_error when `module` imports a function of advapi32, setupapi or version that is none of these.
  explicit CallTrace(HMODULE module);
  ~CallTrace();
  CallTrace(const CallTrace&) = delete;
  CallTrace& operator=(const CallTrace&) = delete;

  /// Each call on a line: the function, and its arguments. Texts and numbers are shown by value, numbers in memory too;
  /// handles and buffers by whether there is one.
  const std::vector<std::string>& Lines() const;

 private:
  struct Slot {
    void** place;
    void* former;
  };
  std::vector<Slot> m_slots;
};

}  // namespace bench
