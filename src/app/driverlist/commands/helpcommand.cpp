#include "commands/commandline.h"
#include "commands/commands.h"
#include "commands/completion.h"
#include "commands/delivery.h"
#include "commands/helpmembers.h"
#include "commands/helptopics.h"
#include "commands/manpage.h"

namespace driverlist {
namespace {

std::string HelpOf(const std::string& topic) {
  const std::size_t width = HelpWidth();
  if (topic == MembersTopic) return MembersHelp(width);
  if (topic == ManTopic) return ManPage();
  if (topic == CompletionTopic) return CompletionScript();
  Options unused;
  const std::unique_ptr<CLI::App> app = MakeCommandLine(unused, width);
  if (topic.empty()) return app->help("", CLI::AppFormatMode::All);
  return app->get_subcommand(topic)->help("driverlist", CLI::AppFormatMode::All);
}

}  // namespace

int RunHelp(const Options& options) { return Deliver(options, HelpOf(options.topic), 0); }

}  // namespace driverlist
