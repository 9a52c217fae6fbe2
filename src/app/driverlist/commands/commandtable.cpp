#include "commands/commandtable.h"

#include <algorithm>

#include "commands/commandoptions.h"
#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"

namespace driverlist {
namespace {

// For diff and health, 1 already means that something was found.
constexpr std::array<CommandEntry, 6> AllCommands = {
    {{Command::List,
      "list",
      "Lists the inventory: every driver service, device and driver package of this machine is one record. It is the "
      "command when no other is named.",
      &AddListOptions,
      &RunList,
      1,
      {{{"--third-party --sort provider,name", "What did not come from the maker of Windows, by provider"},
        {"--kind service --where state=running --where \"image_time>2y\"",
         "Drivers that run and are more than two years old"},
        {"list --format html --output drivers.html", "A page to read, search and print"}}}},
     {Command::Snapshot,
      "snapshot",
      "Writes the whole inventory to a file, for diff and --from.",
      &AddSnapshotOptions,
      &RunSnapshot,
      1,
      {{{"snapshot before.json", "Keeps the inventory, to compare it with a later one"},
        {"snapshot after.json --host-id PC-17", "The same, of a cloned machine that needs an identity of its own"},
        {"snapshot -", "Prints it, for a program that reads it from a pipe"}}}},
     {Command::Diff,
      "diff",
      "Compares two inventories. Exit code: 0 the same, 1 they differ, 2 trouble.",
      &AddDiffOptions,
      &RunDiff,
      2,
      {{{"diff before.json live", "What changed since the snapshot"},
        {"diff before.json after.json", "What differs between two snapshots"},
        {"diff before.json live --format json --output changes.json", "The same, for programs"}}}},
     {Command::Health,
      "health",
      "Finds what deserves a look. Exit code: 0 nothing found, 1 something found, 2 trouble.",
      &AddHealthOptions,
      &RunHealth,
      2,
      {{{"health", "What deserves a look on this machine"},
        {"health --from before.json", "What deserved a look when the snapshot was made"},
        {"health --format json --output findings.json", "The same, for programs"}}}},
     {Command::Collect,
      "collect",
      "Writes the inventory as JSON Lines for a database of many machines: a line about the collection, then one for "
      "each record.",
      &AddCollectOptions,
      &RunCollect,
      1,
      {{{"collect --output lines.jsonl", "The lines of this machine, to be sent to a database"},
        {"collect --output lines.jsonl --host-id PC-17",
         "The same, of a cloned machine that needs an identity of its own"},
        {"collect --output lines.jsonl "
         "--unless-digest 0000000000000000000000000000000000000000000000000000000000000000",
         "Only the first line, unless the content has changed since the collection with that digest"}}}},
     {Command::Help,
      "help",
      "Explains a command, or what is known of a driver.",
      &AddHelpOptions,
      &RunHelp,
      1,
      {{{"help members", "What is known of a driver, for --columns, --where, --sort and --group-by"},
        {"help list", "The options of list"},
        {"help completion", "A script that completes driverlist in PowerShell; its first lines say how to use it"}}}}}};

}  // namespace

const std::array<CommandEntry, 6>& CommandTable() { return AllCommands; }

const CommandEntry& EntryOf(Command command) {
  return *std::find_if(AllCommands.begin(), AllCommands.end(),
                       [command](const CommandEntry& entry) { return entry.command == command; });
}

const CommandEntry* FindCommand(const std::string& name) {
  const auto found = std::find_if(AllCommands.begin(), AllCommands.end(),
                                  [&name](const CommandEntry& entry) { return entry.name == name; });
  return found == AllCommands.end() ? nullptr : &*found;
}

int RunCommand(const Options& options) {
  try {
    return EntryOf(options.command).run(options);
  } catch (const UnusableSnapshot& problem) {
    return Fail(TroubleCode(options), problem.what());
  }
}

}  // namespace driverlist
