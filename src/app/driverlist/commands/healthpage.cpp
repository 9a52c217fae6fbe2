#include "commands/healthpage.h"

#include <numeric>
#include <optional>

#include "commands/columns.h"
#include "formats/healthformats.h"
#include "formats/html/htmlformat.h"

namespace driverlist {
namespace {

/// The columns that most people ask for.
Table TableOfPage(const inventory::Inventory& inventory) {
  Table table = TableOf(inventory.records);
  const auto columns = DefaultColumns(ColumnsOf(std::nullopt), Format::Html, inventory.isVerified);
  std::vector<std::size_t> rows(table.rows.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  return PartOf(std::move(table), rows, columns);
}

}  // namespace

std::string HealthPage(const std::vector<inventory::Finding>& findings, const inventory::Inventory& inventory,
                       const std::optional<inventory::Hiding>& hiding) {
  HtmlContext context = {inventory.head, "", &inventory.records, &findings};
  if (hiding) context.notes.push_back(HidingText(*hiding));
  if (inventory.isVerified) context.notes.push_back(ListsText(inventory.lists, inventory.head.time));
  context.isExamination = true;
  return FormatHtml(TableOfPage(inventory), context);
}

}  // namespace driverlist
