/// @file
/// The summary of a page.
#pragma once

#include <string>
#include <vector>

#include "formats/html/htmldata.h"
#include "formats/html/summary.h"

namespace driverlist {

/// Figures, and bars with their numbers as text next to them. The script turns each bar into a filter.
struct SummarySection {
  explicit SummarySection(const Summary& summary);

  std::string html;
  /// The facets of the bars.
  std::vector<Facet> facets;
};

/// The name of `facet` and its bars.
std::string ChartHtml(const Facet& facet);

/// A figure such as "Running services: 2 of 9 services". `of` may be empty; both texts are the program's own.
std::string FigureHtml(const std::string& label, std::size_t number, const std::string& of);

/// The section with `figures`, made by FigureHtml(), and `charts`, made by ChartHtml().
std::string SummaryHtml(const std::string& figures, const std::string& charts);

}  // namespace driverlist
