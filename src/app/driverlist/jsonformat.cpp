#include <nlohmann/json.hpp>

#include "formats.h"
#include "unicode.h"

namespace driverlist {
namespace {

using Json = nlohmann::ordered_json;

Json Value(const std::string& text) { return Utf8FromAnsi(text); }
Json Value(std::int32_t number) { return number; }
Json Value(const std::vector<std::string>& texts) {
  Json array = Json::array();
  for (const std::string& text : texts) array.push_back(Utf8FromAnsi(text));
  return array;
}

}  // namespace

std::string FormatJson(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                       const ListingContext& context) {
  Json list = Json::array();
  for (const Orvane::DriverData& driver : drivers) {
    Json object = Json::object();
    for (const Column& column : columns) {
      object[std::string(column.name)] =
          std::visit([&driver](auto member) { return Value(driver.*member); }, column.member);
    }
    list.push_back(std::move(object));
  }
  const Json document = {{"schema_version", 1},
                         {"host", context.host},
                         {"time", context.time},
                         {"mode", context.mode},
                         {"drivers", std::move(list)}};
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace driverlist
