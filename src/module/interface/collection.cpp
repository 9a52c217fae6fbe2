#include "interface/collection.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "interface/exclusive.h"
#include "interface/failure.h"
#include "inventory/knownlists.h"

namespace flat {
namespace {

using inventory::Record;

/// The library behind the inventory allows one listing at a time in a process.
SRWLOCK lock = SRWLOCK_INIT;

/// The thread that collects; 0 if no thread does.
std::atomic<DWORD> collector{0};

struct Collector {
  Collector() { collector = GetCurrentThreadId(); }
  ~Collector() { collector = 0; }
};

inventory::Inventory Verified(const Wanted& wanted) {
  const trust::KnownDrivers known = inventory::ReadKnownLists(wanted.knownLists);
  inventory::CollectOptions options = wanted.collect;
  inventory::Verification verification;
  verification.known = &known;
  if (options.progress) {
    verification.progress = [&progress = wanted.collect.progress](std::size_t done, std::size_t all) {
      return progress({"images", done, all});
    };
  }
  options.verification = verification;
  return inventory::Collect(options);
}

}  // namespace

inventory::Inventory Collect(const Wanted& wanted) {
  if (collector == GetCurrentThreadId()) {
    throw Failure(DRIVERINVENTORY_E_ARGUMENT, "A progress callback cannot collect.");
  }
  inventory::Inventory inventory;
  {
    const Exclusive scope(lock);
    const Collector thisThread;
    inventory = wanted.verify ? Verified(wanted) : inventory::Collect(wanted.collect);
  }
  if (wanted.kinds != 0) {
    inventory::Records chosen;
    for (Record& record : inventory.records) {
      if (IsWanted(record.kind, wanted.kinds)) chosen.push_back(std::move(record));
    }
    inventory.records = std::move(chosen);
  }
  return inventory;
}

}  // namespace flat
