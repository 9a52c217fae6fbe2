#include <new>
#include <string>
#include <vector>

#include "context.h"
#include "driverinfo.h"
#include "formats.h"
#include "log.h"
#include "options.h"
#include "output.h"
#include "unicode.h"

namespace driverlist {
namespace {

constexpr int Success = 0;
constexpr int CannotWrite = 1;

int Fail(int exitCode, const std::string& sentence) {
  WriteStandardError("driverlist: " + sentence + "\n");
  return exitCode;
}

/// False when the log file cannot be opened.
bool StartLog(const Options& options) {
  if (options.logLevel) Orvane::SetLogLevel(*options.logLevel);
  if (!options.logFile.empty()) return Orvane::LogToFile(WideFromUtf8(options.logFile), 10 << 20, 3);
  if (options.logLevel) Orvane::LogToStandardError();
  return true;
}

std::string Formatted(const Options& options, const std::vector<Orvane::DriverData>& drivers) {
  switch (options.format) {
    case Format::Csv:
      return FormatCsv(drivers, options.columns);
    case Format::Json:
      return FormatJson(drivers, options.columns, {HostName(), UtcNow(), ModeName(options.mode)});
    case Format::Table:
      break;
  }
  return FormatTable(drivers, options.columns, options.output.empty() ? TerminalWidth() : 0);
}

int Run(const std::vector<std::string>& arguments) {
  const ParsedCommandLine commandLine = ParseCommandLine(arguments);
  if (commandLine.exitCode != 0) return Fail(commandLine.exitCode, commandLine.text);
  std::string problem;
  if (!commandLine.options) {
    problem = WriteStandardOutput(commandLine.text);
    return problem.empty() ? Success : Fail(CannotWrite, "cannot write the output: " + problem);
  }
  const Options& options = *commandLine.options;
  if (!StartLog(options)) return Fail(CannotWrite, "cannot open the log file " + options.logFile + " for writing.");

  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  info.list_drivers(drivers, options.mode);
  const std::string text = Formatted(options, drivers);
  if (options.output.empty()) {
    problem = WriteStandardOutput(text);
    return problem.empty() ? Success : Fail(CannotWrite, "cannot write the output: " + problem);
  }
  problem = WriteFileWhole(options.output, text);
  return problem.empty() ? Success : Fail(CannotWrite, "cannot write " + options.output + ": " + problem);
}

}  // namespace
}  // namespace driverlist

int wmain(int argc, wchar_t** argv) {
  try {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) arguments.push_back(driverlist::Utf8FromWide(argv[i]));
    return driverlist::Run(arguments);
  } catch (const std::bad_alloc&) {
    return driverlist::Fail(driverlist::CannotWrite, "out of memory.");
  }
}
