#include "commands/commandoptions.h"
#include "commands/commandtable.h"
#include "commands/helptopics.h"
#include "commands/sharedoptions.h"

namespace driverlist {
namespace {

std::vector<std::string> Topics() {
  std::vector<std::string> topics = {std::string(MembersTopic), std::string(ManTopic), std::string(CompletionTopic)};
  for (const CommandEntry& entry : CommandTable()) topics.emplace_back(entry.name);
  return topics;
}

}  // namespace

void AddHelpOptions(CLI::App& command, Options& options) {
  AddValue(command, "TOPIC", options.topic, "", OneOf(Topics()),
           "A command, or one of: members (the members of a driver record), man (the manual page), completion (a "
           "script that completes driverlist in PowerShell)");
}

}  // namespace driverlist
