/// @file
/// Owners of Windows handles. A handle lives for the scope of its owner; release() gives it to a caller; KeepOpen()
/// leaves it open for the life of the process.
#pragma once

#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <forward_list>
#include <new>
#include <utility>

namespace Orvane {

/// Move-only owner of one handle. Both a null handle and INVALID_HANDLE_VALUE mean that it owns no handle. Closing
/// preserves GetLastError().
template <typename Handle, auto Close>
class UniqueHandle {
 public:
  explicit UniqueHandle(Handle handle = nullptr) noexcept : m_handle(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : m_handle(other.release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~UniqueHandle() { reset(); }

  explicit operator bool() const noexcept { return m_handle != nullptr && m_handle != INVALID_HANDLE_VALUE; }
  Handle get() const noexcept { return m_handle; }
  Handle release() noexcept { return std::exchange(m_handle, nullptr); }
  void reset(Handle handle = nullptr) noexcept {
    if (*this) {
      const DWORD error = GetLastError();
      Close(m_handle);
      SetLastError(error);
    }
    m_handle = handle;
  }

 private:
  Handle m_handle;
};

using RegKey = UniqueHandle<HKEY, &RegCloseKey>;
using ServiceHandle = UniqueHandle<SC_HANDLE, &CloseServiceHandle>;
using FileHandle = UniqueHandle<HANDLE, &CloseHandle>;
using ProcessHandle = UniqueHandle<HANDLE, &CloseHandle>;
using FindHandle = UniqueHandle<HANDLE, &FindClose>;
using ModuleHandle = UniqueHandle<HMODULE, &FreeLibrary>;
using DeviceSet = UniqueHandle<HDEVINFO, &SetupDiDestroyDeviceInfoList>;
using InfHandle = UniqueHandle<HINF, &SetupCloseInfFile>;
using LocalMemory = UniqueHandle<HLOCAL, &LocalFree>;

/// Leaves the handle open until the process ends. The comment at every call says why.
///
/// In a module that has the libraries linked in, the handle stays open only until that module is unloaded, because it
/// may be loaded and unloaded often.
template <typename Handle, auto Close>
void KeepOpen(UniqueHandle<Handle, Close>&& handle) noexcept {
#ifdef ORVANE_LINKED_IN
  // Created when the first handle is kept.
  static std::forward_list<UniqueHandle<Handle, Close>> kept;  // NOLINT(bugprone-dynamic-static-initializers)
  try {
    kept.emplace_front();
  } catch (const std::bad_alloc&) {
    handle.release();
    return;
  }
  kept.front() = std::move(handle);
#else
  handle.release();
#endif
}

}  // namespace Orvane
