#include "commands/source.h"

#include "commands/delivery.h"
#include "formats/healthformats.h"
#include "inventory/input.h"
#include "inventory/json.h"
#include "inventory/knownlists.h"
#include "terminal/output.h"
#include "terminal/progress.h"

namespace driverlist {
namespace {

inventory::Verification VerificationOf(const trust::KnownDrivers& known, Progress& progress) {
  inventory::Verification verification;
  verification.known = &known;
  verification.progress = [&progress](std::size_t done, std::size_t all) {
    progress.Show("verifying image " + std::to_string(done) + " of " + std::to_string(all));
    return true;
  };
  return verification;
}

/// Silence about known drivers must not be taken for their absence. An examination states this itself.
void NoteMissingLists(const Options& options, const trust::KnownDrivers& known) {
  const bool isMissed = options.command == Command::List || options.command == Command::Snapshot;
  if (isMissed && known.Lists().empty() && !options.quiet) {
    WriteStandardError("driverlist: " + ListsText({}, {}) + "\n");
  }
}

}  // namespace

UnusableInput Unusable(const std::string& path, const inventory::InputProblem& problem) {
  const std::string sentence = path + " " + problem.what();
  return UnusableInput(sentence + (sentence.back() == '?' ? "" : "."));
}

inventory::Inventory ReadSnapshotFile(const std::string& path, const inventory::IsSettled& isSettled) {
  return ReadInputFile(path, [&isSettled](std::streambuf& text) { return inventory::ReadSnapshot(text, isSettled); });
}

inventory::Inventory LiveInventory(const Options& options) {
  if (!options.verify) {
    const Progress progress(WantsProgress(options));
    return inventory::Collect({options.hostId});
  }
  // A comparison does not ask whether a driver is known.
  const bool isCompared = options.command == Command::Diff;
  const trust::KnownDrivers known = isCompared ? trust::KnownDrivers() : inventory::ReadKnownLists(options.known);
  NoteMissingLists(options, known);
  Progress progress(WantsProgress(options));
  return inventory::Collect({options.hostId, nullptr, VerificationOf(known, progress)});
}

inventory::Inventory SnapshotInventory(const std::string& path) {
  inventory::Inventory inventory = ReadSnapshotFile(path);
  if (inventory.schema < inventory::SchemaVersion) {
    throw UnusableInput(
        path + " was written by an older driverlist, which kept too little about each driver: only diff can read it.");
  }
  // The machine and the time are those of the snapshot; the document is made now.
  inventory.head.tool_version = inventory::ToolVersion();
  return inventory;
}

inventory::Inventory ChosenInventory(const Options& options) {
  return options.from.empty() ? LiveInventory(options) : SnapshotInventory(options.from);
}

}  // namespace driverlist
