#include <new>
#include <string>
#include <vector>

#include "commands.h"
#include "delivery.h"
#include "log.h"
#include "options.h"
#include "unicode.h"

namespace driverlist {
namespace {

/// False when the log file cannot be opened.
bool StartLog(const Options& options) {
  if (options.logLevel) Orvane::SetLogLevel(*options.logLevel);
  if (!options.logFile.empty()) return Orvane::LogToFile(WideFromUtf8(options.logFile), 10 << 20, 3);
  if (options.logLevel) Orvane::LogToStandardError();
  return true;
}

int Run(const Options& options) {
  if (!StartLog(options)) {
    return Fail(TroubleCode(options.command), "cannot open the log file " + options.logFile + " for writing.");
  }
  switch (options.command) {
    case Command::Snapshot:
      return RunSnapshot(options);
    case Command::Diff:
      return RunDiff(options);
    case Command::Health:
      return RunHealth(options);
    case Command::List:
      break;
  }
  return RunList(options);
}

int Run(const std::vector<std::string>& arguments) {
  const ParsedCommandLine commandLine = ParseCommandLine(arguments);
  if (commandLine.exitCode != 0) return Fail(commandLine.exitCode, commandLine.text);
  if (!commandLine.options) return Deliver(Options(), commandLine.text, 0);
  try {
    return Run(*commandLine.options);
  } catch (const std::bad_alloc&) {
    return Fail(TroubleCode(commandLine.options->command), "out of memory.");
  }
}

}  // namespace
}  // namespace driverlist

int wmain(int argc, wchar_t** argv) {
  try {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) arguments.push_back(driverlist::Utf8FromWide(argv[i]));
    return driverlist::Run(arguments);
  } catch (const std::bad_alloc&) {
    return driverlist::Fail(1, "out of memory.");
  }
}
