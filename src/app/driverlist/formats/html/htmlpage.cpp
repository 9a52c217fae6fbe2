#include "formats/html/htmlpage.h"

#include <map>

#include "formats/html/htmltext.h"
#include "formats/html/isotime.h"
#include "formats/html/skeleton.h"

namespace driverlist {
namespace {

using Data = std::map<std::string_view, std::string>;

/// `skeleton` with data in its places. What was inserted is not searched again.
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

std::string PageHtml(const Table& table, const PageContent& content) {
  return Filled(ReportSkeleton(), {{"title", HtmlText(content.title)},
                                   {"facts", content.facts},
                                   {"version", HtmlText(content.toolVersion)},
                                   {"note", HtmlText(content.note)},
                                   {"sections", content.sections},
                                   {"rows", HtmlText(content.texts.caption)},
                                   {"table", TableHtml(table, content.texts)},
                                   {"data", DataHtml(content.data, table.columns)}});
}

std::string Fact(std::string_view label, const std::string& html) {
  return html.empty() ? html : "<div>" + Element("dt", "", std::string(label)) + Element("dd", "", html) + "</div>\n";
}

std::string TimeHtml(const std::string& time) {
  if (!IsIsoTime(time)) return HtmlText(time);
  return "<time datetime=\"" + time + "\">" + ReadableTime(time) + " UTC</time>";
}

std::string HostText(const std::string& host) { return host.empty() ? "an unnamed machine" : host; }

}  // namespace driverlist
