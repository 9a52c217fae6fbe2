/// @file
/// WoW64 file-system redirection, switched off for a scope.
#pragma once

#include <windows.h>

namespace Orvane {

/// Switches WoW64 file-system redirection off for the calling thread and this scope. The functions are looked up by
/// name at every use: not every Windows has them.
class RedirectionOff {
 public:
  RedirectionOff() : m_kernel(LoadLibraryExA("kernel32.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (m_kernel == nullptr) return;
    void* oldValue = nullptr;
    const auto disable = Function<BOOL(WINAPI*)(void**)>("Wow64DisableWow64FsRedirection");
    m_isOff = disable != nullptr && disable(&oldValue) == TRUE;
  }
  RedirectionOff(const RedirectionOff&) = delete;
  RedirectionOff& operator=(const RedirectionOff&) = delete;
  // Reverts even if nothing was switched off.
  ~RedirectionOff() {
    if (const auto revert = Function<BOOL(WINAPI*)(void*)>("Wow64RevertWow64FsRedirection")) revert(OldValue);
    // Frees even a null handle, which an owner would skip: every path through here makes the same calls.
    FreeLibrary(m_kernel);
  }

  /// False if redirection could not be switched off, as in a 64-bit process, which has no redirection.
  explicit operator bool() const { return m_isOff; }

 private:
  template <typename Pointer>
  Pointer Function(const char* name) const {
    return reinterpret_cast<Pointer>(reinterpret_cast<void*>(GetProcAddress(m_kernel, name)));
  }

  /// The argument of every revert call, whatever old value the disable call returned: null means redirection switched
  /// on, the state of every thread that enters this library.
  static constexpr void* OldValue = nullptr;

  HMODULE m_kernel;
  bool m_isOff = false;
};

}  // namespace Orvane
