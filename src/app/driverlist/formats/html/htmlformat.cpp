#include "formats/html/htmlformat.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "formats/html/findingrecords.h"
#include "formats/html/htmlfindings.h"
#include "formats/html/htmlpage.h"
#include "formats/html/htmlsummary.h"
#include "formats/html/htmltext.h"
#include "formats/html/relations.h"

namespace driverlist {
namespace {

using inventory::Finding;
using inventory::Records;

std::string ScopeHtml(const std::string& mode) {
  if (mode.empty()) return "Inventory of services, devices and packages";
  if (mode == "all") return "Listing of devices, services and OEM packages (all)";
  if (mode == "by-device") return "Listing of present devices (by-device)";
  if (mode == "registered") return "Listing of registered services (registered)";
  return HtmlText(mode);
}

std::string FactsHtml(const HtmlContext& context) {
  return Fact("Listed", TimeHtml(context.head.time)) + Fact("Windows", HtmlText(context.head.windows)) +
         Fact("Host ID", HtmlText(context.head.host_id)) + Fact("Scope", ScopeHtml(context.mode));
}

std::vector<Finding> FindingsAbout(const Records& records, const std::vector<Finding>& findings) {
  const FindingRecords index(records);
  std::vector<Finding> about;
  std::copy_if(findings.begin(), findings.end(), std::back_inserter(about),
               [&index](const Finding& finding) { return !index.Of(finding).empty(); });
  return about;
}

void AddFindings(const HtmlContext& context, PageContent& content) {
  FindingsSection section(FindingsAbout(*context.records, *context.findings), *context.records, context.notes);
  content.sections += section.html;
  content.data.facets.push_back(std::move(section.facet));
}

void AddSummary(const HtmlContext& context, PageContent& content) {
  SummarySection section(Summarized(*context.records, context.head.time));
  content.sections += section.html;
  std::move(section.facets.begin(), section.facets.end(), std::back_inserter(content.data.facets));
}

}  // namespace

std::string FormatHtml(const Table& table, const HtmlContext& context) {
  const std::string host = HostText(context.head.host);
  PageContent content;
  content.title = (context.isExamination ? "Findings on " : "Drivers of ") + host;
  content.facts = FactsHtml(context);
  content.toolVersion = context.head.tool_version;
  content.note = context.mode.empty() ? "All times are UTC." : "Dates are in the machine's time zone.";
  content.texts = {"All drivers", "No driver was found."};
  content.data.all = table;
  content.data.thing = "record";
  content.data.file = "drivers.csv";
  if (context.records != nullptr) {
    content.data.all = TableOf(*context.records);
    content.data.related = Related(*context.records);
    if (context.findings != nullptr) AddFindings(context, content);
    AddSummary(context, content);
  }
  return PageHtml(table, content);
}

}  // namespace driverlist
