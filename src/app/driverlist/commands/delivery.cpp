#include "commands/delivery.h"

#include "commands/commandtable.h"
#include "terminal/colours.h"
#include "terminal/output.h"
#include "terminal/text.h"

namespace driverlist {

int TroubleCode(const Options& options) {
  return options.failIfNone || options.failIfAny ? 2 : EntryOf(options.command).troubleCode;
}

int Fail(int exitCode, const std::string& sentence) {
  WriteStandardError("driverlist: " + Visible(sentence) + "\n");
  return exitCode;
}

int Deliver(const Options& options, const std::string& text, int exitCode) {
  const bool toFile = !options.output.empty();
  const std::string problem = toFile ? WriteFileWhole(options.output, text) : WriteStandardOutput(text);
  if (problem.empty()) return exitCode;
  return Fail(TroubleCode(options),
              "cannot write " + (toFile ? options.output : std::string("the output")) + ": " + problem);
}

int Deliver(const Options& options, const std::function<std::string(const Page&)>& format, int exitCode) {
  if (!options.output.empty() || options.format != Format::Table) return Deliver(options, format(Page()), exitCode);
  const Colours colours(true);
  return Deliver(options, format({TerminalWidth(), colours.AreOn()}), exitCode);
}

bool WantsProgress(const Options& options) { return !options.quiet && !options.logLevel && options.logFile.empty(); }

}  // namespace driverlist
