/// @file
/// The allocations of the library and of the run-time library, numbered, and those that find no memory.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <memory>
#include <set>
#include <utility>

#include "freshlibrary.h"
#include "importhook.h"

namespace sweeps {

/// While it lives, allocations between Begin() and End() are numbered. All memory of C++ comes from malloc in
/// libstdc++, whichever module asks for it; the library itself also takes pages. What handlers of hooks allocate does
/// not count.
class Allocations {
 public:
  /// Allocations from `first` up to `last` find no memory; none when `last` is before `first`. `requested` is called
  /// before each allocation, with whether it will fail, and may allocate.
  Allocations(std::size_t first, std::size_t last, std::function<void(bool fails)> requested)
      : m_first(first), m_last(last), m_requested(std::move(requested)) {}
  Allocations(const Allocations&) = delete;
  Allocations& operator=(const Allocations&) = delete;

  void Begin() { m_counts = true; }
  void End() { m_counts = false; }

  /// Call it before the library is unloaded. What it frees while it is, is still seen.
  void LetGoOfLibrary() { m_library.reset(); }

  std::size_t Count() const { return m_count; }

  /// How many of the numbered blocks are still allocated.
  std::size_t Blocks() const { return m_blocks.size(); }

 private:
  /// Counts an allocation that `allocate` makes.
  template <typename Allocate>
  void* Numbered(Allocate allocate) {
    if (!m_counts || test::runningHandlers > 1) return allocate();
    const std::size_t number = m_count++;
    m_counts = false;
    const bool fails = m_first <= number && number <= m_last;
    m_requested(fails);
    void* const block = fails ? nullptr : allocate();
    if (block != nullptr) m_blocks.insert(block);
    m_counts = true;
    return block;
  }

  void Forget(void* block) {
    // The set frees memory itself.
    if (std::exchange(m_isForgetting, true)) return;
    m_blocks.erase(block);
    m_isForgetting = false;
  }

  std::size_t m_first;
  std::size_t m_last;
  std::function<void(bool)> m_requested;
  bool m_counts = false;
  bool m_isForgetting = false;
  std::size_t m_count = 0;
  std::set<void*> m_blocks;

  /// The hooks in the library itself.
  struct LibraryHooks {
    Allocations& allocations;
    HOOK(allocate, Library(), VirtualAlloc, [this](void* place, std::size_t size, DWORD type, DWORD protection) {
      return allocations.Numbered([&] { return allocate.Real(place, size, type, protection); });
    });
    HOOK(release, Library(), VirtualFree, [this](void* block, std::size_t size, DWORD type) {
      allocations.Forget(block);
      return release.Real(block, size, type);
    });
  };

  HOOK(m_malloc, GetModuleHandleA("libstdc++-6.dll"), malloc,
       [this](std::size_t size) { return Numbered([&] { return m_malloc.Real(size); }); });
  HOOK(m_free, GetModuleHandleA("libstdc++-6.dll"), free, [this](void* block) {
    Forget(block);
    m_free.Real(block);
  });
  std::unique_ptr<LibraryHooks> m_library{new LibraryHooks{*this}};
};

}  // namespace sweeps
