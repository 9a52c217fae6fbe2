// Every allocation of the library fails in turn.
#include <cstdlib>

#include "importhook.h"
#include "library.h"
#include "machine.h"

namespace {

using Allocations = test::HostedMachine;

/// What a host gets of a collection.
struct Outcome {
  driverinventory_status status = DRIVERINVENTORY_OK;
  std::string json;
  std::string error;
  std::size_t allocations = 0;
};

/// Collects and writes, in a library that is loaded for it; the allocation `failing` finds no memory.
Outcome Collected(const test::LibraryFile& file, std::size_t failing) {
  Outcome outcome;
  const test::LoadedLibrary library(file);
  driverinventory* inventory = nullptr;
  char* text = nullptr;
  std::size_t length = 0;
  {
    HOOK(allocate, library.Module(), malloc,
         [&](std::size_t size) { return outcome.allocations++ == failing ? nullptr : allocate.Real(size); });
    outcome.status = library.collect(nullptr, &inventory);
    EXPECT_EQ(inventory == nullptr, outcome.status != DRIVERINVENTORY_OK);
    if (inventory != nullptr) outcome.status = library.document(inventory, DRIVERINVENTORY_JSON, &text, &length);
    EXPECT_EQ(text == nullptr, outcome.status != DRIVERINVENTORY_OK);
  }
  if (outcome.status != DRIVERINVENTORY_OK) outcome.error = library.error();
  if (text != nullptr) outcome.json = test::WithoutTimes(std::string(text, length));
  EXPECT_EQ(library.free(text), DRIVERINVENTORY_OK);
  EXPECT_EQ(library.release(inventory), DRIVERINVENTORY_OK);
  return outcome;
}

TEST_F(Allocations, FailInTurnAndNothingElseHappens) {
  const test::LibraryFile file;
  const Outcome whole = Collected(file, static_cast<std::size_t>(-1));
  ASSERT_EQ(whole.status, DRIVERINVENTORY_OK);
  std::size_t failed = 0;
  for (std::size_t i = 0; i < whole.allocations; ++i) {
    const Outcome outcome = Collected(file, i);
    if (outcome.status == DRIVERINVENTORY_OK) {
      // Nothing of it was lost.
      EXPECT_EQ(outcome.json, whole.json) << "allocation " << i;
    } else {
      EXPECT_EQ(outcome.status, DRIVERINVENTORY_E_MEMORY) << "allocation " << i << ": " << outcome.error;
      EXPECT_EQ(outcome.error, "Memory ran out.");
      ++failed;
    }
  }
  RecordProperty("allocations", std::to_string(whole.allocations));
  EXPECT_GT(failed, whole.allocations / 2);
}

}  // namespace
