/// @file
/// A copy of driverinventory.dll that is loaded for itself, with caches of its own, and unloaded.
#pragma once

#include <windows.h>

#include <driverinventory.h>

#include <stdexcept>
#include <string>

#include "program.h"
#include "scratchmachine.h"

namespace test {

/// The copy, while it lives; load it as often as you like.
class LibraryFile {
 public:
  LibraryFile() : m_path(m_folder.Path(L"hosted.dll")) {
    if (!CopyFileA(ProgramFile(L"driverinventory.dll").c_str(), Narrow().c_str(), TRUE)) {
      throw std::runtime_error("driverinventory.dll cannot be copied");
    }
  }
  const std::wstring& Path() const { return m_path; }

 private:
  std::string Narrow() const { return std::string(m_path.begin(), m_path.end()); }

  TemporaryFolder m_folder;
  std::wstring m_path;
};

/// One loading of it.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const LibraryFile& file) : m_module(LoadLibraryW(file.Path().c_str())) {
    if (m_module == nullptr) throw std::runtime_error("the library cannot be loaded");
    collect = Function<decltype(&driverinventory_collect)>("driverinventory_collect");
    read = Function<decltype(&driverinventory_read)>("driverinventory_read");
    document = Function<decltype(&driverinventory_document)>("driverinventory_document");
    release = Function<decltype(&driverinventory_release)>("driverinventory_release");
    free = Function<decltype(&driverinventory_free)>("driverinventory_free");
    error = Function<decltype(&driverinventory_error)>("driverinventory_error");
  }
  ~LoadedLibrary() { FreeLibrary(m_module); }
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  HMODULE Module() const { return m_module; }

  decltype(&driverinventory_collect) collect;
  decltype(&driverinventory_read) read;
  decltype(&driverinventory_document) document;
  decltype(&driverinventory_release) release;
  decltype(&driverinventory_free) free;
  decltype(&driverinventory_error) error;

 private:
  template <typename Pointer>
  Pointer Function(const char* name) const {
    return reinterpret_cast<Pointer>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
  }

  HMODULE m_module;
};

}  // namespace test
