#include <optional>
#include <utility>

#include "commands/commands.h"
#include "commands/delivery.h"
#include "commands/healthpage.h"
#include "commands/source.h"
#include "formats/formats.h"
#include "formats/healthformats.h"
#include "inventory/baseline.h"
#include "inventory/documents.h"
#include "terminal/output.h"

namespace driverlist {
namespace {

using inventory::Finding;
using inventory::Hiding;
using inventory::Inventory;

/// What health reports.
struct Report {
  Inventory inventory;
  std::vector<Finding> findings;
  std::optional<Hiding> hiding;
};

/// Hides the findings that the baseline at `path` contains.
void Hide(const std::string& path, const inventory::Baseline& baseline, Report& report) {
  try {
    RequireComparable(baseline, report.inventory);
  } catch (const inventory::InputProblem& problem) {
    throw Unusable(path, problem);
  }
  inventory::NewFindings found = NewSince(baseline, std::move(report.findings));
  report.findings = std::move(found.findings);
  report.hiding = Hiding{baseline.head, found.hidden};
}

Report Examined(const Options& options) {
  // Read before the machine, which takes longer.
  std::optional<inventory::Baseline> baseline;
  if (!options.baseline.empty()) baseline = ReadInputFile(options.baseline, &inventory::ReadBaseline);
  Report report{ChosenInventory(options), {}, {}};
  report.findings = ChosenFindings(report.inventory, options.findings);
  if (baseline) Hide(options.baseline, *baseline, report);
  return report;
}

std::string Formatted(const Options& options, const Report& report, const Page& page) {
  switch (options.format) {
    case Format::Json:
      return inventory::FindingsJson(report.findings, report.inventory, report.hiding);
    case Format::Csv:
      return FormatCsv(FindingsTable(report.findings), options.csv);
    case Format::Markdown:
      return FormatMarkdown(FindingsTable(report.findings));
    case Format::Html:
      return HealthPage(report.findings, report.inventory, report.hiding);
    default:
      return FormatHealthTable(report.findings, report.inventory, page, report.hiding);
  }
}

}  // namespace

int RunHealth(const Options& options) {
  const Report report = Examined(options);
  const auto format = [&](const Page& page) { return Formatted(options, report, page); };
  return Deliver(options, format, report.findings.empty() ? 0 : 1);
}

}  // namespace driverlist
