#include "formats/html/htmldata.h"

#include <algorithm>
#include <set>
#include <utility>

#include "formats/html/htmlcolumn.h"
#include "inventory/json.h"
#include "inventory/predicates.h"
#include "inventory/versionkey.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::Json;
using inventory::Value;
using inventory::ValueType;

Json ColumnsJson(const std::vector<Column>& columns) {
  Json json = Json::array();
  for (const Column& column : columns) {
    json.push_back({{"name", column.name},
                    {"label", LabelOf(column)},
                    {"kind", KindOf(column.type)},
                    {"style", StyleOf(column)},
                    {"width", column.width},
                    {"title", column.isTitle}});
  }
  return json;
}

std::vector<std::string> VisibleTexts(const std::vector<std::string>& texts) {
  std::vector<std::string> visible;
  for (const std::string& text : texts) visible.push_back(Visible(text));
  return visible;
}

/// The value as the page shows it: texts are Visible().
Json ShownJson(const Value& value) {
  if (const auto* const number = std::get_if<std::uint64_t>(&value)) return *number;
  if (const auto* const flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* const texts = std::get_if<std::vector<std::string>>(&value)) return VisibleTexts(*texts);
  return Visible(inventory::TextOf(value));
}

/// Whether a saved file has a different text than the page.
bool IsShownOtherwise(const Value& value) {
  const std::string text = inventory::TextOf(value);
  return Visible(text) != text;
}

/// Adds the rows and, by row and column, the texts that the page shows differently.
void AddRows(const Table& table, Json& json) {
  Json rows = Json::array();
  Json texts = Json::object();
  for (std::size_t row = 0; row < table.rows.size(); ++row) {
    Json values = Json::array();
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
      const Value& value = table.rows[row][column].value;
      values.push_back(ShownJson(value));
      if (IsShownOtherwise(value)) {
        texts[std::to_string(row)][std::to_string(column)] = inventory::TextOf(value);
      }
    }
    rows.push_back(std::move(values));
  }
  json["rows"] = std::move(rows);
  json["texts"] = std::move(texts);
}

std::string SortKey(const Value& version) {
  const std::string text = inventory::TextOf(version);
  return inventory::IsKnownVersion(text) ? inventory::VersionKey(text) : std::string();
}

/// The position of each row in the order of versions, from 1; 0 for a row without a version.
Json RanksJson(const Table& table, std::size_t column) {
  std::vector<std::string> keys;
  for (const auto& row : table.rows) keys.push_back(SortKey(row[column].value));
  std::set<std::string> known(keys.begin(), keys.end());
  known.insert(std::string());
  const std::vector<std::string> order(known.begin(), known.end());
  Json ranks = Json::array();
  for (const std::string& key : keys) {
    ranks.push_back(std::lower_bound(order.begin(), order.end(), key) - order.begin());
  }
  return ranks;
}

/// The tone of each row as a digit.
std::string TonesOf(const Table& table, std::size_t column) {
  std::string tones;
  for (const auto& row : table.rows) tones += static_cast<char>('0' + static_cast<int>(row[column].tone));
  return tones;
}

/// Adds, by column, the order of versions and the tones.
void AddOrderAndTones(const Table& table, Json& json) {
  Json ranks = Json::object();
  Json tones = Json::object();
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (table.columns[i].type == ValueType::Version) ranks[std::to_string(i)] = RanksJson(table, i);
    std::string toneOfRows = TonesOf(table, i);
    if (toneOfRows.find_first_not_of('0') != std::string::npos) tones[std::to_string(i)] = std::move(toneOfRows);
  }
  json["ranks"] = std::move(ranks);
  json["tones"] = std::move(tones);
}

Json FacetsJson(const std::vector<Facet>& facets) {
  Json json = Json::object();
  for (const Facet& facet : facets) {
    Json& groups = json[facet.name] = Json::array();
    for (const Group& group : facet.groups) groups.push_back(group.records);
  }
  return json;
}

Json OpeningsJson(const PageData& data) {
  Json openings = Json::array();
  for (const auto& lines : data.openings) {
    Json& opening = openings.emplace_back(Json::array());
    for (const auto& line : lines) opening.push_back(VisibleTexts({line.begin(), line.end()}));
  }
  return openings;
}

/// JSON without the character that could end the element.
std::string DataText(const Json& json) {
  std::string text;
  for (const char c : inventory::JsonText(json, false)) {
    if (c == '<') {
      text += "\\u003c";
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

std::string DataHtml(const PageData& data, const std::vector<Column>& shown) {
  Json json = {{"thing", data.thing}, {"file", data.file}, {"columns", ColumnsJson(data.all.columns)}};
  Json& places = json["shown"] = Json::array();
  for (const Column& column : shown) places.push_back(IndexOf(data.all.columns, column.name));
  AddRows(data.all, json);
  AddOrderAndTones(data.all, json);
  json["facets"] = FacetsJson(data.facets);
  json["related"] = data.related;
  json["openings"] = OpeningsJson(data);
  json["openingOfRow"] = data.openingOfRow;
  return "<script type=\"application/json\" id=\"data\">" + DataText(json) + "</script>\n";
}

}  // namespace driverlist
