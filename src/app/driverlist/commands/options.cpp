#include "commands/options.h"

#include "commands/commandline.h"
#include "commands/commandtable.h"

namespace driverlist {
namespace {

/// One sentence about what is wrong with a command line, in our own words rather than those of the library that parsed
/// it.
std::string Sentence(const CLI::ParseError& error) {
  const std::string text = error.what();
  const std::string subject = text.substr(0, text.find(':'));
  if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ArgumentMismatch)) {
    return text + (text.back() == '?' ? "" : ".");
  }
  const std::size_t flagEnd = text.find(" was given a disallowed flag override");
  if (flagEnd != std::string::npos) return "--" + text.substr(0, flagEnd) + " takes no value.";
  const bool isRepeatable = subject == "--where" || subject == "--sort" || subject == "--known" ||
                            subject == "--rule" || subject == "--not-rule";
  return subject +
         (isRepeatable ? " takes one value each time it is given." : " takes one value and can be given only once.");
}

std::string UnknownArguments(const std::vector<std::string>& arguments) {
  std::string sentence = "unknown argument:";
  for (const std::string& argument : arguments) sentence += " " + argument;
  return sentence + ".";
}

/// Whether the arguments need no command before them.
bool NamesCommand(const std::vector<std::string>& arguments) {
  if (arguments.empty()) return false;
  const std::string& first = arguments.front();
  return FindCommand(first) != nullptr || first == "--help" || first == "-h" || first == "--version";
}

}  // namespace

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments, std::size_t helpWidth) {
  Options options;
  const std::unique_ptr<CLI::App> app = MakeCommandLine(options, helpWidth);
  // CLI11 takes them last to first.
  std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
  if (!NamesCommand(arguments)) reversed.emplace_back("list");
  try {
    app->parse(reversed);
    options.command = FindCommand(app->get_subcommands().front()->get_name())->command;
  } catch (const CLI::CallForHelp&) {
    // Of the command if there is one, otherwise of all commands.
    return {std::nullopt, app->help("", CLI::AppFormatMode::All), 0};
  } catch (const CLI::CallForVersion&) {
    return {std::nullopt, app->version() + "\n", 0};
  } catch (const CLI::ExtrasError&) {
    return {std::nullopt, UnknownArguments(app->remaining(true)), 2};
  } catch (const CLI::ParseError& error) {
    return {std::nullopt, Sentence(error), 2};
  }
  return {std::move(options), std::string(), 0};
}

}  // namespace driverlist
