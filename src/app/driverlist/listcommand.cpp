#include <algorithm>

#include "colours.h"
#include "commands.h"
#include "context.h"
#include "delivery.h"
#include "formats.h"
#include "htmlformat.h"
#include "progress.h"

namespace driverlist {
namespace {

using Orvane::DriverData;

std::vector<DriverData> Listed(const Options& options) {
  const Progress progress(WantsProgress(options));
  Orvane::DriverInfo info;
  std::vector<DriverData> drivers;
  info.list_drivers(drivers, options.mode);
  return drivers;
}

/// Paths have no place on a narrow page, unless they are asked for.
std::vector<Column> ColumnsFor(const Options& options, const Page& page) {
  // A terminal of 120 columns, whose last stays empty.
  constexpr std::size_t wide = 119;
  std::vector<Column> columns = options.columns;
  if (options.columnsChosen || page.width == 0 || page.width >= wide) return columns;
  columns.erase(
      std::remove_if(columns.begin(), columns.end(), [](const Column& column) { return column.name == "path"; }),
      columns.end());
  return columns;
}

std::string Table(const Options& options, const std::vector<DriverData>& drivers, bool colours) {
  const Page page = PageFor(options, colours);
  return FormatTable(drivers, ColumnsFor(options, page), page.width, page.colours);
}

std::string Formatted(const Options& options, const std::vector<DriverData>& drivers, bool colours) {
  const ListingContext context = {HostName(), UtcNow(), ModeName(options.mode)};
  switch (options.format) {
    case Format::Csv:
      return FormatCsv(drivers, options.columns);
    case Format::Json:
      return FormatJson(drivers, options.columns, context);
    case Format::JsonLines:
      return FormatJsonLines(drivers, options.columns, context);
    case Format::Html:
      return FormatHtml(drivers, options.columns, context);
    case Format::Markdown:
      return FormatMarkdown(drivers, options.columns);
    case Format::Table:
      break;
  }
  return Table(options, drivers, colours);
}

}  // namespace

int RunList(const Options& options) {
  const std::vector<DriverData> drivers = Select(Listed(options), options.selection);
  const Colours colours(options.output.empty() && options.format == Format::Table);
  return Deliver(options, Formatted(options, drivers, colours.AreOn()), 0);
}

}  // namespace driverlist
