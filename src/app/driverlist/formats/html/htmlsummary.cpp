#include "formats/html/htmlsummary.h"

#include <algorithm>

#include "formats/html/htmltext.h"

namespace driverlist {
namespace {

/// A horizontal bar of `part` and, behind it, `whole` out of `most`.
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
  const bool isParted = running == Running::Shown;
  std::string bar = Element("span", "label", HtmlText(group.label));
  bar += BarImage(isParted ? group.running : group.records, group.records, most);
  bar += " " + Element("span", "count", std::to_string(group.records));
  if (isParted) bar += " " + Element("span", "note", std::to_string(group.running) + " running");
  return Element("li", group.isUnknown ? "unknown" : "", bar) + "\n";
}

std::string Chart(const std::string& heading, const std::vector<Group>& groups, Running running = Running::NotShown) {
  std::size_t most = 0;
  for (const Group& group : groups) most = std::max(most, group.records);
  std::string bars;
  for (const Group& group : groups) bars += Bar(group, most, running);
  if (groups.empty()) return Element("h2", "", heading) + "\n<p>None.</p>\n";
  return Element("h2", "", heading) + "\n<ul class=\"bars\" role=\"list\">\n" + bars + "</ul>\n";
}

/// How many of what there are, such as "2 of 9 devices".
std::string Figure(const std::string& label, std::size_t part, std::size_t whole, const std::string& thing) {
  const std::string of = "of " + std::to_string(whole) + " " + thing + (whole == 1 ? "" : "s");
  return "<div>" + Element("dt", "", label) + Element("dd", "", std::to_string(part) + " " + Element("small", "", of)) +
         "</div>\n";
}

std::string Figures(const Summary& summary) {
  std::string figures = Figure("Running services", summary.runningServices, summary.services, "service") +
                        Figure("Third-party services", summary.thirdPartyServices, summary.services, "service") +
                        Figure("Devices without a driver", summary.devicesWithoutDriver, summary.devices, "device");
  if (summary.devicesWithProblem > 0) {
    figures += Figure("Devices with a problem", summary.devicesWithProblem, summary.devices, "device");
  }
  return figures + Figure("OEM packages", summary.oemPackages, summary.packages, "package");
}

std::string ChartBox(const std::string& charts) { return Element("div", "chart", "\n" + charts) + "\n"; }

}  // namespace

std::string SummaryHtml(const Summary& summary) {
  return "<section class=\"page\" aria-label=\"Summary\">\n" + Element("dl", "figures", "\n" + Figures(summary)) +
         "\n<div class=\"charts\">\n" + ChartBox(Chart("Provider", summary.byProvider)) +
         ChartBox(Chart("State of services", summary.byState) +
                  Chart("Start type of services", summary.byStartType, Running::Shown)) +
         ChartBox(Chart("Kind", summary.byKind) + Chart("Age of service images", summary.byAge)) +
         "</div>\n</section>\n";
}

}  // namespace driverlist
