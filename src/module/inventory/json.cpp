#include "inventory/json.h"

namespace inventory {
namespace {

Json JsonOf(const trust::KnownMatch& match) {
  Json json = {{"list", match.list}, {"entry", match.entry}};
  if (!match.name.empty()) json["name"] = match.name;
  json["category"] = trust::NameOf(match.category);
  json["match"] = trust::NameOf(match.kind);
  if (!match.cves.empty()) json["cve"] = match.cves;
  return json;
}

struct ToJson {
  Json operator()(std::monostate) const { return nullptr; }
  Json operator()(const std::vector<trust::KnownMatch>& matches) const {
    Json json = Json::array();
    for (const trust::KnownMatch& match : matches) json.push_back(JsonOf(match));
    return json;
  }
  template <typename T>
  Json operator()(const T& value) const {
    return value;
  }
};

}  // namespace

Json HeadJson(const Head& head) {
  Json json = {{"schema_version", SchemaVersion}};
  for (const auto& [name, text] :
       {std::pair("tool_version", &head.tool_version), std::pair("host", &head.host),
        std::pair("host_id", &head.host_id), std::pair("windows", &head.windows), std::pair("time", &head.time)}) {
    if (!text->empty()) json[name] = *text;
  }
  return json;
}

void AddValue(Json& object, std::string_view name, const Value& value) {
  if (!std::holds_alternative<std::monostate>(value)) object[std::string(name)] = std::visit(ToJson(), value);
}

void AddMembers(Json& object, const Record& record) {
  for (const Member& member : Members()) AddValue(object, member.name, ValueOf(record, member));
}

std::string JsonText(const Json& json, bool isIndented) {
  return json.dump(isIndented ? 2 : -1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace inventory
