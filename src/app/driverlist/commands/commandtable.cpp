#include "commands/commandtable.h"

#include <algorithm>

#include "commands/commandoptions.h"
#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"

namespace driverlist {
namespace {

// For diff, health and check, 1 already means that something was found.
constexpr std::array<CommandEntry, 8> AllCommands = {
    {{Command::List,
      "list",
      "Lists the inventory: every driver service, device and driver package of this machine is one record. This is the "
      "default command.",
      &AddListOptions,
      &RunList,
      1,
      {{{"--third-party --sort provider,name", "Everything not made by the maker of Windows, by provider"},
        {"--kind service --where state=running --where \"image_time>2y\"",
         "Running drivers that are more than two years old"},
        {"list --format html --output drivers.html", "A page to read, search and print"}}}},
     {Command::Snapshot,
      "snapshot",
      "Writes the whole inventory to a file, for diff and --from.",
      &AddSnapshotOptions,
      &RunSnapshot,
      1,
      {{{"snapshot before.json", "Keeps the inventory, to compare it with a later one"},
        {"snapshot after.json --host-id PC-17", "The same, for a cloned machine, which needs an identity of its own"},
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
        {"health --baseline accepted.json", "Only what is new since the baseline was made: an alarm"},
        {"health --severity high --format json --output findings.json", "What is urgent, for programs"}}}},
     {Command::Baseline,
      "baseline",
      "Accepts what health finds now: health --baseline reports only what is new since.",
      &AddBaselineOptions,
      &RunBaseline,
      2,
      {{{"baseline accepted.json", "Accepts what there is"},
        {"baseline accepted.json --not-rule known-malicious", "The same, but malicious images stay reported"},
        {"baseline - --from before.json", "Prints what would have been accepted when the snapshot was made"}}}},
     {Command::Check,
      "check",
      "Checks drivers against the rules of a policy. Exit code: 0 all are kept, 1 one is broken, 2 trouble.",
      &AddCheckOptions,
      &RunCheck,
      2,
      {{{"check policy.json", "Which drivers of this machine break a rule"},
        {"check policy.json --from before.json", "Tries the policy on a snapshot"},
        {"check policy.json --format junit --output policy.xml", "For the report of a CI system"}}}},
     {Command::Collect,
      "collect",
      "Writes the inventory as JSON Lines for a database of many machines: a line about the collection, then one line "
      "for each record.",
      &AddCollectOptions,
      &RunCollect,
      1,
      {{{"collect --output lines.jsonl", "The lines of this machine, to be sent to a database"},
        {"collect --output lines.jsonl --host-id PC-17",
         "The same, for a cloned machine, which needs an identity of its own"},
        {"collect --output lines.jsonl "
         "--unless-digest 0000000000000000000000000000000000000000000000000000000000000000",
         "Only the first line, unless the content has changed since the collection with that digest"}}}},
     {Command::Help,
      "help",
      "Explains a command, or the members of a driver record.",
      &AddHelpOptions,
      &RunHelp,
      1,
      {{{"help members", "The members of a driver record, for --columns, --where, --sort and --group-by"},
        {"help list", "The options of list"},
        {"help completion", "A script that completes driverlist in PowerShell; its first lines say how to use it"}}}}}};

}  // namespace

const std::array<CommandEntry, 8>& CommandTable() { return AllCommands; }

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
  } catch (const UnusableInput& problem) {
    return Fail(TroubleCode(options), problem.what());
  }
}

}  // namespace driverlist
