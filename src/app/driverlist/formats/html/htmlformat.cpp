#include "formats/html/htmlformat.h"

#include <map>
#include <string_view>

#include "formats/html/htmlsummary.h"
#include "formats/html/htmltable.h"
#include "formats/html/htmltext.h"
#include "formats/html/isotime.h"
#include "formats/html/skeleton.h"

namespace driverlist {
namespace {

std::string TimeHtml(const std::string& time) {
  if (!IsIsoTime(time)) return HtmlText(time);
  return "<time datetime=\"" + time + "\">" + ReadableTime(time) + " UTC</time>";
}

std::string ScopeHtml(const std::string& mode) {
  if (mode.empty()) return "Inventory of services, devices and packages";
  if (mode == "all") return "Listing of devices, services and OEM packages (all)";
  if (mode == "by-device") return "Listing of present devices (by-device)";
  if (mode == "registered") return "Listing of registered services (registered)";
  return HtmlText(mode);
}

/// One line of what is known of the inventory as a whole; nothing when `html` is empty.
std::string Fact(const std::string& label, const std::string& html) {
  return html.empty() ? html : "<div>" + Element("dt", "", label) + Element("dd", "", html) + "</div>\n";
}

std::string FactsHtml(const HtmlContext& context) {
  return Fact("Listed", TimeHtml(context.head.time)) + Fact("Windows", HtmlText(context.head.windows)) +
         Fact("Host ID", HtmlText(context.head.host_id)) + Fact("Scope", ScopeHtml(context.mode));
}

using Data = std::map<std::string_view, std::string>;

/// `skeleton` with data in its places. What was put in is not looked at again.
std::string Filled(std::string_view skeleton, const Data& data) {
  std::string page;
  for (;;) {
    const std::size_t start = skeleton.find("{{");
    page += skeleton.substr(0, start);
    if (start == std::string_view::npos) return page;
    const std::size_t end = skeleton.find("}}", start);
    page += data.at(skeleton.substr(start + 2, end - start - 2));
    skeleton.remove_prefix(end + 2);
  }
}

}  // namespace

std::string FormatHtml(const Table& table, const HtmlContext& context) {
  const inventory::Head& head = context.head;
  return Filled(ReportSkeleton(),
                {{"host", head.host.empty() ? "an unnamed machine" : HtmlText(head.host)},
                 {"facts", FactsHtml(context)},
                 {"version", HtmlText(head.tool_version)},
                 {"note", context.mode.empty() ? "All times are UTC." : "Dates are in the machine's time zone."},
                 {"summary", context.records == nullptr ? "" : SummaryHtml(Summarized(*context.records, head.time))},
                 {"table", TableHtml(table)}});
}

}  // namespace driverlist
