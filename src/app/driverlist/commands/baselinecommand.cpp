#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/source.h"
#include "inventory/baseline.h"
#include "terminal/output.h"

namespace driverlist {
namespace {

/// "3 findings accepted: 1 high, 2 low"
std::string AcceptedLine(const std::vector<inventory::Finding>& findings) {
  std::string severities;
  for (const inventory::Severity severity : inventory::Severities) {
    std::size_t count = 0;
    for (const inventory::Finding& finding : findings) count += finding.severity == severity ? 1 : 0;
    if (count == 0) continue;
    severities +=
        (severities.empty() ? ": " : ", ") + std::to_string(count) + " " + std::string(SeverityName(severity));
  }
  const std::size_t all = findings.size();
  return std::to_string(all) + (all == 1 ? " finding" : " findings") + " accepted" + severities + "\n";
}

}  // namespace

int RunBaseline(const Options& options) {
  const inventory::Inventory inventory = ChosenInventory(options);
  const std::vector<inventory::Finding> findings = ChosenFindings(inventory, options.findings);
  const bool isPrinted = options.file == StandardOutput;
  Options delivery = options;
  delivery.output = isPrinted ? std::string() : options.file;
  const int exitCode = Deliver(delivery, BaselineText(findings, inventory), 0);
  if (exitCode != 0 || isPrinted) return exitCode;
  delivery.output.clear();
  return Deliver(delivery, AcceptedLine(findings), 0);
}

}  // namespace driverlist
