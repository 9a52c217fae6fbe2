#include "delivery.h"

#include "output.h"

namespace driverlist {

int TroubleCode(Command command) { return command == Command::Diff || command == Command::Health ? 2 : 1; }

int Fail(int exitCode, const std::string& sentence) {
  WriteStandardError("driverlist: " + sentence + "\n");
  return exitCode;
}

int Deliver(const Options& options, const std::string& text, int exitCode) {
  const bool toFile = !options.output.empty();
  const std::string problem = toFile ? WriteFileWhole(options.output, text) : WriteStandardOutput(text);
  if (problem.empty()) return exitCode;
  return Fail(TroubleCode(options.command),
              "cannot write " + (toFile ? options.output : std::string("the output")) + ": " + problem);
}

bool WantsProgress(const Options& options) { return !options.quiet && !options.logLevel && options.logFile.empty(); }

Page PageFor(const Options& options, bool colours) { return {options.output.empty() ? TerminalWidth() : 0, colours}; }

}  // namespace driverlist
