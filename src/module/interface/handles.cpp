#include "interface/handles.h"

#include <windows.h>

#include <array>
#include <atomic>

#include "interface/exclusive.h"
#include "interface/failure.h"

namespace flat {
namespace {

/// Never an address of user space: using a handle as a pointer faults at once.
constexpr std::uintptr_t Mark = std::uintptr_t{0xD11B} << 48;

struct Slot {
  /// The handle that is open in this slot; 0 if none is.
  std::atomic<std::uintptr_t> handle{0};
  std::unique_ptr<const Contents> contents;
};

std::array<Slot, MostHandles> slots;
/// Counts all handles, so that no handle is used twice.
std::uintptr_t given = 0;
SRWLOCK lock = SRWLOCK_INIT;

Slot& SlotOf(std::uintptr_t handle) { return slots[handle % MostHandles]; }

[[noreturn]] void Refuse(const driverinventory* handle) {
  throw Failure(DRIVERINVENTORY_E_HANDLE,
                handle == nullptr ? "The inventory is null." : "That is not an inventory, or it was released.");
}

}  // namespace

driverinventory* NewHandle(std::unique_ptr<const Contents> contents) {
  const Exclusive scope(lock);
  for (std::size_t i = 0; i < MostHandles; ++i) {
    const std::uintptr_t handle = Mark | (++given & ~(std::uintptr_t{0xFFFF} << 48));
    Slot& slot = SlotOf(handle);
    if (slot.handle.load(std::memory_order_relaxed) != 0) continue;
    slot.contents = std::move(contents);
    slot.handle.store(handle, std::memory_order_release);
    return reinterpret_cast<driverinventory*>(handle);
  }
  throw Failure(DRIVERINVENTORY_E_MEMORY,
                "More than " + std::to_string(MostHandles) + " inventories are open: release some.");
}

const Contents& ContentsOf(const driverinventory* handle) {
  const auto number = reinterpret_cast<std::uintptr_t>(handle);
  const Slot& slot = SlotOf(number);
  if (number == 0 || slot.handle.load(std::memory_order_acquire) != number) Refuse(handle);
  return *slot.contents;
}

void Release(const driverinventory* handle) {
  const auto number = reinterpret_cast<std::uintptr_t>(handle);
  Slot& slot = SlotOf(number);
  std::unique_ptr<const Contents> contents;
  const Exclusive scope(lock);
  if (number == 0 || slot.handle.load(std::memory_order_relaxed) != number) Refuse(handle);
  slot.handle.store(0, std::memory_order_release);
  contents = std::move(slot.contents);
}

}  // namespace flat
