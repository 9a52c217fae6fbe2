#include "colours.h"
#include "commands.h"
#include "context.h"
#include "delivery.h"
#include "healthformats.h"
#include "healthrules.h"
#include "progress.h"

namespace driverlist {
namespace {

MachineFacts Facts(const Options& options) {
  const Progress progress(WantsProgress(options));
  return CollectFacts();
}

}  // namespace

int RunHealth(const Options& options) {
  const std::vector<Finding> findings = Examine(Facts(options));
  const Colours colours(options.output.empty() && options.format == Format::Table);
  const std::string text = options.format == Format::Json
                               ? FormatHealthJson(findings, {HostName(), WindowsVersion(), ToolVersion(), UtcNow()})
                               : FormatHealthTable(findings, PageFor(options, colours.AreOn()));
  return Deliver(options, text, findings.empty() ? 0 : 1);
}

}  // namespace driverlist
