#include "jsonvalues.h"

#include <cstdint>

#include "unicode.h"

namespace driverlist {
namespace {

Json Value(const std::string& text) { return Utf8FromAnsi(text); }
Json Value(std::int32_t number) { return number; }
Json Value(const std::vector<std::string>& texts) {
  Json array = Json::array();
  for (const std::string& text : texts) array.push_back(Utf8FromAnsi(text));
  return array;
}

}  // namespace

void AddFields(Json& object, const Orvane::DriverData& driver, const std::vector<Column>& columns) {
  for (const Column& column : columns) {
    object[std::string(column.name)] =
        std::visit([&driver](auto member) { return Value(driver.*member); }, column.member);
  }
}

std::string JsonText(const Json& json, bool isIndented) {
  return json.dump(isIndented ? 2 : -1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace driverlist
