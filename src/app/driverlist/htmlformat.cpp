#include "htmlformat.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>

#include "htmltext.h"
#include "imagedate.h"
#include "skeleton.h"
#include "summary.h"

namespace driverlist {
namespace {

using Orvane::DriverData;

/// How the page shows a field. The script sorts by `kind`; the style knows fields by their names. Columns share the page in
/// proportion to `share`, about the characters that they need.
struct Field {
  std::string_view name;
  std::string_view label;
  std::string_view kind;
  unsigned share;
};

constexpr Field Fields[] = {{"name", "Name", "text", 18},
                            {"description", "Description", "text", 20},
                            {"provider", "Provider", "text", 15},
                            {"path", "Path", "text", 22},
                            {"file_version", "Version", "version", 14},
                            {"state", "State", "text", 9},
                            {"start_type", "Start", "text", 10},
                            {"date", "Image date", "text", 16},
                            {"size", "Size, KiB", "number", 7},
                            {"product_version", "Product version", "version", 14},
                            {"reserved1", "Reserved 1", "text", 10},
                            {"reserved2", "Reserved 2", "text", 10},
                            {"reserved_list", "Reserved list", "text", 10},
                            {"found_by_device", "Found by device", "text", 8}};

Field FieldOf(const Column& column) {
  const auto found =
      std::find_if(std::begin(Fields), std::end(Fields), [&](const Field& field) { return field.name == column.name; });
  return found == std::end(Fields) ? Field{column.name, column.name, "text", 10} : *found;
}

/// An attribute with its value; nothing when the value is empty.
std::string Attribute(std::string_view name, std::string_view value) {
  return value.empty() ? std::string() : " " + std::string(name) + "=\"" + HtmlText(value) + "\"";
}

std::string Element(const std::string& tag, std::string_view cssClass, const std::string& content) {
  return "<" + tag + Attribute("class", cssClass) + ">" + content + "</" + tag + ">";
}

// --- Table

std::string CellText(const DriverData& driver, const Column& column) {
  if (column.name == "found_by_device") return driver.found_by_device == 1 ? "yes" : "no";
  const std::string text = ColumnText(driver, column);
  if (column.name != "date") return text;
  const std::optional<ImageDate> date = ParseImageDate(text);
  return date ? IsoText(*date) : text;
}

/// `html` with places to break long names and paths at.
std::string Breakable(const std::string& html) {
  std::string breakable;
  for (const char c : html) {
    breakable += c;
    if (c == '\\' || c == '_') breakable += "<wbr>";
  }
  return breakable;
}

std::string Cell(const DriverData& driver, const Column& column) {
  const std::string text = Breakable(HtmlText(CellText(driver, column)));
  if (column.name == "name") return "<th scope=\"row\" class=\"name\">" + text + "</th>";
  std::string cssClass(column.name);
  if (column.name == "state" && (text == "Running" || text == "Stopped")) cssClass += " " + text;
  return Element("td", cssClass, text);
}

std::string Row(const DriverData& driver, const std::vector<Column>& columns) {
  std::string row = "<tr>";
  for (const Column& column : columns) row += Cell(driver, column);
  return row + "</tr>\n";
}

unsigned WholeShare(const std::vector<Column>& columns) {
  unsigned whole = 0;
  for (const Column& column : columns) whole += FieldOf(column).share;
  return whole;
}

std::string TableHead(const std::vector<Column>& columns) {
  const unsigned whole = WholeShare(columns);
  std::string widths = "<colgroup>";
  std::string head = "<thead><tr>";
  for (const Column& column : columns) {
    const Field field = FieldOf(column);
    // An attribute of the element: the policy forbids styles of single elements.
    widths += "<col width=\"" + std::to_string(field.share * 100 / whole) + "%\">";
    head += "<th scope=\"col\"" + Attribute("class", field.name) + Attribute("data-kind", field.kind) + ">" +
            HtmlText(field.label) + "</th>";
  }
  return widths + "</colgroup>\n" + head + "</tr></thead>\n";
}

std::string Table(const std::vector<DriverData>& drivers, const std::vector<Column>& columns) {
  // What no usual screen can hold is wider than the screen.
  const std::string_view cssClass = WholeShare(columns) > 150 ? "wide" : "";
  std::string table = "<table id=\"drivers\"" + Attribute("class", cssClass) + ">\n<caption>All drivers</caption>\n";
  table += TableHead(columns) + "<tbody>\n";
  for (const DriverData& driver : drivers) table += Row(driver, columns);
  table += "</tbody>\n</table>\n";
  if (drivers.empty()) table += "<p class=\"none\">No driver was found.</p>\n";
  return table;
}

// --- Summary

/// A horizontal bar of `part` and, behind it, `whole` out of `most`. Its numbers stand beside it as text.
std::string BarImage(std::size_t part, std::size_t whole, std::size_t most) {
  const auto rectangle = [most](std::string_view cssClass, std::size_t length) {
    // The least that can be seen, for one among thousands.
    const std::size_t width = length == 0 ? 0 : std::max<std::size_t>(length * 1000 / most, 4);
    return "<rect" + Attribute("class", cssClass) + " width=\"" + std::to_string(width) + "\" height=\"1\"/>";
  };
  return "<svg viewBox=\"0 0 1000 1\" preserveAspectRatio=\"none\" aria-hidden=\"true\" focusable=\"false\">" +
         rectangle("whole", whole) + (part > 0 ? rectangle("part", part) : "") + "</svg>";
}

enum class Running { NotShown, Shown };

std::string Bar(const Group& group, std::size_t most, Running running) {
  const bool parted = running == Running::Shown;
  std::string bar = Element("span", "label", HtmlText(group.label));
  bar += BarImage(parted ? group.running : group.drivers, group.drivers, most);
  bar += " " + Element("span", "count", std::to_string(group.drivers));
  if (parted) bar += " " + Element("span", "note", std::to_string(group.running) + " running");
  return Element("li", group.unknown ? "unknown" : "", bar) + "\n";
}

std::string Chart(const std::string& heading, const std::vector<Group>& groups, Running running = Running::NotShown) {
  std::size_t most = 0;
  for (const Group& group : groups) most = std::max(most, group.drivers);
  std::string bars;
  for (const Group& group : groups) bars += Bar(group, most, running);
  if (groups.empty()) return Element("h2", "", heading) + "\n<p>None.</p>\n";
  return Element("h2", "", heading) + "\n<ul class=\"bars\" role=\"list\">\n" + bars + "</ul>\n";
}

std::string Figure(const std::string& label, const std::string& value, const std::string& note = std::string()) {
  const std::string noteText = note.empty() ? note : " " + Element("small", "", note);
  return "<div>" + Element("dt", "", label) + Element("dd", "", value + noteText) + "</div>\n";
}

std::string SummaryHtml(const Summary& summary) {
  const auto number = [](std::size_t value) { return std::to_string(value); };
  std::string html = "<dl class=\"figures\">\n";
  html += Figure("Drivers", number(summary.drivers));
  html += Figure("Running", number(summary.running), "of " + number(summary.services) + " services");
  html += Figure("Devices without a driver", number(summary.devicesWithoutDriver));
  html += Figure("Providers", number(summary.providers));
  html += "</dl>\n<div class=\"charts\">\n";
  html += Element("div", "chart", "\n" + Chart("Provider", summary.byProvider)) + "\n";
  html += Element("div", "chart",
                  "\n" + Chart("State", summary.byState) + Chart("Start type", summary.byStartType, Running::Shown)) +
          "\n";
  html += Element("div", "chart", "\n" + Chart("Age", summary.byAge)) + "\n";
  return html + "</div>\n";
}

// --- Page

std::string TimeText(const std::string& time) {
  if (!ParseIsoDay(time)) return HtmlText(time);
  return "<time datetime=\"" + time + "\">" + time.substr(0, 10) + " " + time.substr(11, 8) + " UTC</time>";
}

std::string ModeText(const std::string& mode) {
  if (mode == "all") return "Devices, services and OEM packages (all)";
  if (mode == "by-device") return "Present devices (by-device)";
  if (mode == "registered") return "Registered services (registered)";
  return HtmlText(mode);
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

std::string FormatHtml(const std::vector<DriverData>& drivers, const std::vector<Column>& columns,
                       const ListingContext& context) {
  return Filled(ReportSkeleton(), {{"host", context.host.empty() ? "an unnamed machine" : HtmlText(context.host)},
                                   {"time", TimeText(context.time)},
                                   {"mode", ModeText(context.mode)},
                                   {"version", DRIVERLIST_VERSION},
                                   {"summary", SummaryHtml(Summarized(drivers, context.time))},
                                   {"table", Table(drivers, columns)}});
}

}  // namespace driverlist
