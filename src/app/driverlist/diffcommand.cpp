#include <stdexcept>
#include <utility>

#include "colours.h"
#include "commands.h"
#include "comparison.h"
#include "delivery.h"
#include "diffformats.h"
#include "input.h"
#include "inventory.h"
#include "progress.h"
#include "snapshotfile.h"

namespace driverlist {
namespace {

/// what() is the sentence.
struct Unreadable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

Inventory ReadSnapshot(const std::string& path) {
  std::string text;
  const std::string problem = ReadFileWhole(path, text);
  if (!problem.empty()) throw Unreadable("cannot read " + path + ": " + problem);
  ParsedSnapshot parsed = ParseSnapshot(text);
  if (!parsed.inventory) throw Unreadable(path + " " + parsed.problem + ".");
  return std::move(*parsed.inventory);
}

Inventory Newer(const Options& options) {
  if (options.newFile != "live") return ReadSnapshot(options.newFile);
  const Progress progress(WantsProgress(options));
  return LiveInventory();
}

}  // namespace

int RunDiff(const Options& options) {
  try {
    const Inventory before = ReadSnapshot(options.file);
    const Inventory after = Newer(options);
    const Comparison comparison = Compare(before.records, after.records);
    const Colours colours(options.output.empty() && options.format == Format::Table);
    const std::string text = options.format == Format::Json
                                 ? FormatDiffJson(before, after, comparison)
                                 : FormatDiffTable(before, after, comparison, PageFor(options, colours.AreOn()));
    return Deliver(options, text, comparison.differences.empty() ? 0 : 1);
  } catch (const Unreadable& problem) {
    return Fail(TroubleCode(options.command), problem.what());
  }
}

}  // namespace driverlist
