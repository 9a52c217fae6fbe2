#include "columns.h"

#include <algorithm>

#include "unicode.h"

namespace driverlist {
namespace {

std::string Text(const std::string& value) { return Utf8FromAnsi(value); }
std::string Text(std::int32_t value) { return std::to_string(value); }
std::string Text(const std::vector<std::string>& value) {
  std::string joined;
  for (const std::string& text : value) {
    if (!joined.empty()) joined += ';';
    joined += Utf8FromAnsi(text);
  }
  return joined;
}

}  // namespace

const std::vector<Column>& AllColumns() {
  using Orvane::DriverData;
  static const std::vector<Column> columns = {{"name", &DriverData::name},
                                              {"description", &DriverData::description},
                                              {"provider", &DriverData::provider},
                                              {"path", &DriverData::path},
                                              {"file_version", &DriverData::file_version},
                                              {"state", &DriverData::state},
                                              {"start_type", &DriverData::start_type},
                                              {"date", &DriverData::date},
                                              {"size", &DriverData::size},
                                              {"product_version", &DriverData::product_version},
                                              {"reserved1", &DriverData::reserved1},
                                              {"reserved2", &DriverData::reserved2},
                                              {"reserved_list", &DriverData::reserved_list},
                                              {"found_by_device", &DriverData::found_by_device}};
  return columns;
}

const Column* FindColumn(std::string_view name) {
  const auto& columns = AllColumns();
  const auto found = std::find_if(columns.begin(), columns.end(), [name](const Column& c) { return c.name == name; });
  return found == columns.end() ? nullptr : &*found;
}

std::string ColumnText(const Orvane::DriverData& driver, const Column& column) {
  return std::visit([&driver](auto member) { return Text(driver.*member); }, column.member);
}

}  // namespace driverlist
