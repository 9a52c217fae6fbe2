/// @file
/// WoW64 file-system redirection for a test: a 64-bit process has none, and so nothing that could be switched off.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "importhook.h"

namespace test {

/// While it lives, `module` finds functions that switch redirection off and on, and records what it does with them. One
/// at a time.
class Redirection {
 public:
  /// `disableResult` is what the function that switches it off returns.
  Redirection(HMODULE module, BOOL disableResult) : m_disableResult(disableResult), m_module(module) { s_this = this; }
  ~Redirection() { s_this = nullptr; }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

  /// Whether it is switched off now.
  bool off = false;
  /// Whether the functions are there, and whether kernel32.dll can be loaded.
  bool hasDisable = true;
  bool hasRevert = true;
  bool loads = true;
  /// What the module did, oldest first. Tests add what they want in between.
  std::vector<std::string> calls;

 private:
  static BOOL WINAPI Disable(void** oldValue) {
    s_this->calls.push_back("disable");
    *oldValue = reinterpret_cast<void*>(std::intptr_t{0x1234});
    s_this->off = s_this->m_disableResult == TRUE;
    return s_this->m_disableResult;
  }
  static BOOL WINAPI Revert(void* oldValue) {
    s_this->calls.push_back(oldValue == nullptr ? "revert null" : "revert something");
    s_this->off = false;
    return TRUE;
  }

  template <typename Function>
  static FARPROC Erased(Function function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
  }

  FARPROC Find(HMODULE module, const char* name) {
    // What else the module looks up has nothing to do with redirection.
    if (std::string(name).rfind("Wow64", 0) != 0) return GetProcAddress(module, name);
    calls.push_back("look up " + std::string(name) + (module == nullptr ? " in null" : ""));
    if (name == std::string("Wow64DisableWow64FsRedirection") && hasDisable) return Erased(&Disable);
    if (name == std::string("Wow64RevertWow64FsRedirection") && hasRevert) return Erased(&Revert);
    return nullptr;
  }

  HMODULE Load(const char* name, HANDLE file, DWORD flags) {
    calls.push_back("load " + std::string(name) + " " + std::to_string(flags) + (file == nullptr ? "" : " with file"));
    return loads ? m_load.Real(name, file, flags) : nullptr;
  }

  BOOL Free(HMODULE module) {
    calls.push_back(module == nullptr ? "free null" : "free");
    return m_free.Real(module);
  }

  static inline Redirection* s_this = nullptr;
  BOOL m_disableResult;
  HMODULE m_module;
  ImportHook<&LoadLibraryExA> m_load{m_module, "LoadLibraryExA",
                                     [this](auto... arguments) { return Load(arguments...); }};
  ImportHook<&GetProcAddress> m_find{m_module, "GetProcAddress",
                                     [this](auto... arguments) { return Find(arguments...); }};
  ImportHook<&FreeLibrary> m_free{m_module, "FreeLibrary", [this](HMODULE module) { return Free(module); }};
};

}  // namespace test
