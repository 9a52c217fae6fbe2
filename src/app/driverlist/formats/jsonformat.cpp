#include "formats/formats.h"
#include "inventory/documents.h"

namespace driverlist {
namespace {

using inventory::Json;

Json JsonOf(const ListHead& head) {
  Json json = inventory::HeadJson(head.head);
  if (!head.mode.empty()) json["mode"] = head.mode;
  return json;
}

void AddCells(Json& object, const Table& table, const std::vector<Cell>& row) {
  for (std::size_t i = 0; i < row.size(); ++i) inventory::AddValue(object, table.columns[i].name, row[i].value);
}

}  // namespace

std::string FormatJson(const Table& table, const ListHead& head) {
  Json rows = Json::array();
  for (const auto& row : table.rows) {
    Json object = Json::object();
    AddCells(object, table, row);
    rows.push_back(std::move(object));
  }
  return head.counts ? inventory::GroupsJson(JsonOf(head), std::move(rows))
                     : inventory::ListJson(JsonOf(head), std::move(rows));
}

std::string FormatJsonLines(const Table& table, const ListHead& head) {
  const Json beginning = JsonOf(head);
  std::string lines;
  for (const auto& row : table.rows) {
    Json object = beginning;
    AddCells(object, table, row);
    lines += inventory::JsonLine(object);
  }
  return lines;
}

}  // namespace driverlist
