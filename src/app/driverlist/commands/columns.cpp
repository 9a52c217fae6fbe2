#include "commands/columns.h"

#include <algorithm>
#include <iterator>

namespace driverlist {
namespace {

using inventory::Column;

/// Those of `columns` that have a `place`, in the order of places.
std::vector<Column> Placed(const std::vector<Column>& columns, unsigned Column::*place, bool isVerified) {
  std::vector<Column> placed;
  std::copy_if(columns.begin(), columns.end(), std::back_inserter(placed), [place, isVerified](const Column& column) {
    return column.*place != 0 && (isVerified || !column.isOfVerification);
  });
  std::sort(placed.begin(), placed.end(), [place](const Column& a, const Column& b) { return a.*place < b.*place; });
  return placed;
}

}  // namespace

std::vector<Column> ColumnsOf(const std::optional<inventory::ListingMode>& mode) {
  const auto& fields = inventory::ListingFields();
  const auto& members = inventory::Members();
  return mode ? std::vector<Column>(fields.begin(), fields.end()) : std::vector<Column>(members.begin(), members.end());
}

std::vector<Column> DefaultColumns(const std::vector<Column>& columns, Format format, bool isVerified) {
  switch (format) {
    case Format::Table:
      return Placed(columns, &Column::tablePlace, isVerified);
    case Format::Html:
      return Placed(columns, &Column::pagePlace, isVerified);
    default:
      return columns;
  }
}

std::vector<std::string> ColumnNames(const std::vector<Column>& columns) {
  std::vector<std::string> names;
  for (const Column& column : columns) names.emplace_back(column.name);
  return names;
}

}  // namespace driverlist
