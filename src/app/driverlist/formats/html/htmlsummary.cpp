#include "formats/html/htmlsummary.h"

#include <algorithm>

#include "formats/html/htmltext.h"

namespace driverlist {
namespace {

/// A horizontal bar of length `part` in front of one of length `whole`, where `most` is the full width.
std::string BarImage(std::size_t part, std::size_t whole, std::size_t most) {
  const auto rectangle = [most](std::string_view cssClass, std::size_t length) {
    // The least that can be seen, for one among thousands.
    const std::size_t width = length == 0 ? 0 : std::max<std::size_t>(length * 1000 / most, 4);
    return "<rect" + Attribute("class", cssClass) + " width=\"" + std::to_string(width) + "\" height=\"1\"/>";
  };
  return "<svg viewBox=\"0 0 1000 1\" preserveAspectRatio=\"none\" aria-hidden=\"true\" focusable=\"false\">" +
         rectangle("whole", whole) + (part > 0 ? rectangle("part", part) : "") + "</svg>";
}

std::string Bar(const Group& group, std::size_t most, bool isParted) {
  std::string bar = Element("span", "label", HtmlText(group.label));
  bar += BarImage(isParted ? group.running : group.Count(), group.Count(), most);
  bar += " " + Element("span", "count", std::to_string(group.Count()));
  if (isParted) bar += " " + Element("span", "note", std::to_string(group.running) + " running");
  return Element("li", group.isUnknown ? "unknown" : "", bar) + "\n";
}

/// A count and what it counts, such as "2 of 9 devices".
std::string Figure(const std::string& label, std::size_t part, std::size_t whole, const std::string& thing) {
  return FigureHtml(label, part, "of " + std::to_string(whole) + " " + thing + (whole == 1 ? "" : "s"));
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

}  // namespace

std::string ChartHtml(const Facet& facet) {
  std::size_t most = 0;
  for (const Group& group : facet.groups) most = std::max(most, group.Count());
  std::string bars;
  for (const Group& group : facet.groups) bars += Bar(group, most, facet.showsRunning);
  const std::string list = "<ul" + Attribute("class", facet.showsRunning ? "bars parted" : "bars") + " role=\"list\"" +
                           Attribute("data-facet", facet.name) + ">\n" + bars + "</ul>\n";
  return Element(
             "div", "chart",
             "\n" + Element("h2", "", HtmlText(facet.name)) + "\n" + (facet.groups.empty() ? "<p>None.</p>\n" : list)) +
         "\n";
}

std::string FigureHtml(const std::string& label, std::size_t number, const std::string& of) {
  const std::string part = of.empty() ? "" : " " + Element("small", "", of);
  return "<div>" + Element("dt", "", label) + Element("dd", "", std::to_string(number) + part) + "</div>\n";
}

std::string SummaryHtml(const std::string& figures, const std::string& charts) {
  return "<section class=\"page\" aria-label=\"Summary\">\n" + Element("dl", "figures", "\n" + figures) + "\n" +
         Element("div", "charts", "\n" + charts) + "\n</section>\n";
}

SummarySection::SummarySection(const Summary& summary)
    : facets{{"Provider", summary.byProvider},
             {"Kind", summary.byKind},
             {"State of services", summary.byState},
             {"Start type of services", summary.byStartType, true},
             {"Age of service images", summary.byAge}} {
  std::string charts;
  for (const Facet& facet : facets) charts += ChartHtml(facet);
  html = SummaryHtml(Figures(summary), charts);
}

}  // namespace driverlist
