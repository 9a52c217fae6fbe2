#include "formats/table.h"

#include <algorithm>
#include <utility>

#include "inventory/predicates.h"

namespace driverlist {
namespace {

using inventory::ListedDriver;
using inventory::Record;

/// Whether `member` is the one that is stored in `own`.
template <typename Source>
bool IsMember(const inventory::Member& member, Source own) {
  const Source* const source = std::get_if<Source>(&member.source);
  return source != nullptr && *source == own;
}

Tone ToneOf(const Record& record, const inventory::Member& member) {
  if (IsMember(member, &Record::state) && inventory::IsService(record)) {
    return inventory::IsRunning(record) ? Tone::Good : Tone::Doubtful;
  }
  const bool isMissing = inventory::IsImageMissing(record);
  const bool hasProblem = inventory::HasProblem(record);
  const bool isBad = (member.isTitle && (isMissing || hasProblem || inventory::HasNoDriver(record))) ||
                     (IsMember(member, &Record::image_missing) && isMissing) ||
                     (IsMember(member, &Record::problem_code) && hasProblem);
  return isBad ? Tone::Bad : Tone::Plain;
}

}  // namespace

Table TableOf(const inventory::Records& records) {
  Table table;
  const auto& members = inventory::Members();
  table.columns.assign(members.begin(), members.end());
  for (const Record& record : records) {
    std::vector<Cell>& row = table.rows.emplace_back();
    for (const inventory::Member& member : members) {
      row.push_back({inventory::ValueOf(record, member), ToneOf(record, member)});
    }
  }
  return table;
}

Table TableOf(const std::vector<ListedDriver>& drivers) {
  Table table;
  const auto& fields = inventory::ListingFields();
  table.columns.assign(fields.begin(), fields.end());
  for (const ListedDriver& driver : drivers) {
    std::vector<Cell>& row = table.rows.emplace_back();
    for (const inventory::ListingField& field : fields) row.push_back({inventory::FieldOf(driver, field)});
  }
  return table;
}

std::size_t IndexOf(const std::vector<inventory::Column>& columns, std::string_view name) {
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [name](const inventory::Column& column) { return column.name == name; });
  return static_cast<std::size_t>(found - columns.begin());
}

Table PartOf(Table table, const std::vector<std::size_t>& rows, const std::vector<inventory::Column>& columns) {
  std::vector<std::size_t> places;
  for (const inventory::Column& column : columns) places.push_back(IndexOf(table.columns, column.name));
  Table part;
  part.columns = columns;
  part.rows.reserve(rows.size());
  for (const std::size_t row : rows) {
    std::vector<Cell>& cells = part.rows.emplace_back();
    cells.reserve(places.size());
    for (const std::size_t place : places) cells.push_back(std::move(table.rows[row][place]));
  }
  return part;
}

}  // namespace driverlist
