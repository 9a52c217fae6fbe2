#include <new>
#include <string>
#include <vector>

#include "commands/commandtable.h"
#include "commands/delivery.h"
#include "commands/helptext.h"
#include "commands/options.h"
#include "inventory/knownlists.h"
#include "log.h"
#include "platform/encoding.h"
#include "terminal/interruption.h"
#include "terminal/logfile.h"

namespace driverlist {
namespace {

int RunWithLogFile(const Options& options) {
  const int trouble = TroubleCode(options);
  const LogFile log(options.logFile);
  const std::string unopened = log.Problem();
  if (!unopened.empty()) return Fail(trouble, "cannot open the log file " + options.logFile + ": " + unopened);
  const int exitCode = RunCommand(options);
  const std::string unwritten = log.Problem();
  // Other problems have been reported already.
  if (unwritten.empty() || exitCode == trouble) return exitCode;
  return Fail(trouble, "cannot write the log file " + options.logFile + ": " + unwritten);
}

int Run(const Options& options) {
  if (options.logLevel) Orvane::SetLogLevel(*options.logLevel);
  if (!options.logFile.empty()) return RunWithLogFile(options);
  if (options.logLevel) Orvane::LogToStandardError();
  return RunCommand(options);
}

int Run(const std::vector<std::string>& arguments) {
  const ParsedCommandLine commandLine = ParseCommandLine(arguments, HelpWidth());
  if (commandLine.exitCode != 0) return Fail(commandLine.exitCode, commandLine.text);
  if (!commandLine.options) return Deliver(Options(), commandLine.text, 0);
  try {
    return Run(*commandLine.options);
  } catch (const inventory::UnusableList& problem) {
    return Fail(2, problem.what());
  } catch (const std::bad_alloc&) {
    return Fail(TroubleCode(*commandLine.options), "out of memory.");
  }
}

}  // namespace
}  // namespace driverlist

int wmain(int argc, wchar_t** argv) {
  driverlist::EndCleanlyWhenInterrupted();
  try {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) arguments.push_back(Orvane::Utf8FromWide(argv[i]));
    return driverlist::Run(arguments);
  } catch (const std::bad_alloc&) {
    return driverlist::Fail(1, "out of memory.");
  }
}
