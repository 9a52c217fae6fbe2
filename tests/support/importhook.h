/// @file
/// Stands in for a platform function that one module of the process calls.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// The slot of the import directory through which `module` calls `function`. Throws std::runtime_error, which fails the
/// test, when the module does not import it: a hook that never comes to bear would show nothing.
void** ImportSlot(HMODULE module, const char* function);

/// The program that runs, as a module whose imports can be hooked.
inline HMODULE ThisProgram() { return GetModuleHandleA(nullptr); }

/// driverinfo.dll; null where it is not loaded.
inline HMODULE Library() { return GetModuleHandleA("driverinfo.dll"); }

/// The functions that `module` imports from `dll` by name, in the order of the import directory.
std::vector<std::string> ImportedFunctions(HMODULE module, const char* dll);

/// Puts `value` into an import slot and returns what stood there.
void* ReplaceSlot(void** slot, void* value);

/// How many handlers are running; what they call of the platform is no part of them. In a handler that was called by
/// the program, not by another handler, it is 1.
inline int runningHandlers = 0;

/// Changes that number for its scope.
class HandlerScope {
 public:
  explicit HandlerScope(int running) : m_former(std::exchange(runningHandlers, running)) {}
  ~HandlerScope() { runningHandlers = m_former; }
  HandlerScope(const HandlerScope&) = delete;
  HandlerScope& operator=(const HandlerScope&) = delete;

 private:
  int m_former;
};

template <auto Function>
class ImportHook;

/// While it lives, calls of `Function` by one module go to `handler`; Real() still reaches the platform. Hooks of one
/// function nest. Call it by HOOK, which knows the name.
template <typename Result, typename... Arguments, Result (*Function)(Arguments...)>
class ImportHook<Function> {
 public:
  using Handler = std::function<Result(Arguments...)>;

  ImportHook(HMODULE module, const char* name, Handler handler)
      : m_handler(std::move(handler)), m_slot(ImportSlot(module, name)), m_outer(std::exchange(s_innermost, this)) {
    m_real = ReplaceSlot(m_slot, reinterpret_cast<void*>(&Enter));
  }
  ~ImportHook() {
    ReplaceSlot(m_slot, m_real);
    s_innermost = m_outer;
  }
  ImportHook(const ImportHook&) = delete;
  ImportHook& operator=(const ImportHook&) = delete;

  /// What the module would have called without this hook.
  Result Real(Arguments... arguments) const {
    if (m_outer != nullptr) return m_outer->m_handler(arguments...);
    const HandlerScope scope(runningHandlers - 1);
    return reinterpret_cast<decltype(Function)>(m_real)(arguments...);
  }

 private:
  static Result Enter(Arguments... arguments) {
    const HandlerScope scope(runningHandlers + 1);
    return s_innermost->m_handler(arguments...);
  }

  static inline ImportHook* s_innermost = nullptr;

  Handler m_handler;
  void** m_slot;
  void* m_real = nullptr;
  ImportHook* m_outer;
};

}  // namespace test

/// HOOK(hook, module, RegOpenKeyExA, [&](HKEY key, ...) -> LSTATUS { ... });
#define HOOK(variable, module, function, ...) \
  const test::ImportHook<&function> variable { (module), #function, __VA_ARGS__ }
