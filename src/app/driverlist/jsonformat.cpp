#include "formats.h"
#include "jsonvalues.h"

namespace driverlist {
namespace {

Json Head(const ListingContext& context) {
  return {{"schema_version", 1}, {"host", context.host}, {"time", context.time}, {"mode", context.mode}};
}

}  // namespace

std::string FormatJson(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                       const ListingContext& context) {
  Json list = Json::array();
  for (const Orvane::DriverData& driver : drivers) {
    Json object = Json::object();
    AddFields(object, driver, columns);
    list.push_back(std::move(object));
  }
  Json document = Head(context);
  document["drivers"] = std::move(list);
  return JsonText(document, true) + "\n";
}

std::string FormatJsonLines(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns,
                            const ListingContext& context) {
  std::string lines;
  for (const Orvane::DriverData& driver : drivers) {
    Json object = Head(context);
    AddFields(object, driver, columns);
    lines += JsonText(object, false) + "\n";
  }
  return lines;
}

}  // namespace driverlist
