#include <stdexcept>
#include <utility>

#include "commands/commands.h"
#include "commands/delivery.h"
#include "formats/diffformats.h"
#include "inventory/comparison.h"
#include "inventory/input.h"
#include "inventory/snapshot.h"
#include "terminal/progress.h"

namespace driverlist {
namespace {

/// what() is the sentence.
struct Unreadable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

inventory::Inventory ReadSnapshotFile(const std::string& path, const inventory::IsSettled& isSettled = nullptr) {
  try {
    inventory::InputFile file(path);
    return inventory::ReadSnapshot(file, isSettled);
  } catch (const inventory::InputProblem& problem) {
    throw Unreadable(path + " " + problem.what() + ".");
  }
}

inventory::Comparison Compared(const Options& options) {
  inventory::Comparer comparer(ReadSnapshotFile(options.file));
  if (options.newFile == "live") {
    const Progress progress(WantsProgress(options));
    return comparer.Compare(inventory::Collect(options.hostId));
  }
  const auto isSettled = [&comparer](const inventory::Record& record, unsigned schema) {
    return comparer.Settle(record, schema);
  };
  return comparer.Compare(ReadSnapshotFile(options.newFile, isSettled));
}

}  // namespace

int RunDiff(const Options& options) {
  try {
    const inventory::Comparison comparison = Compared(options);
    const auto format = [&](const Page& page) {
      return options.format == Format::Json ? FormatDiffJson(comparison, inventory::ThisMachine(options.hostId))
                                            : FormatDiffTable(comparison, page);
    };
    return Deliver(options, format, comparison.differences.empty() ? 0 : 1);
  } catch (const Unreadable& problem) {
    return Fail(TroubleCode(options.command), problem.what());
  }
}

}  // namespace driverlist
