#include "records.h"

#include <utility>

namespace test {
namespace {

/// In the order of the record, empty ones left out.
std::vector<std::pair<std::string, std::string>> OrderedFields(const Orvane::DriverData& driver) {
  const std::pair<const char*, const std::string&> texts[] = {{"name", driver.name},
                                                              {"description", driver.description},
                                                              {"provider", driver.provider},
                                                              {"path", driver.path},
                                                              {"file_version", driver.file_version},
                                                              {"state", driver.state},
                                                              {"start_type", driver.start_type},
                                                              {"date", driver.date},
                                                              {"size", driver.size},
                                                              {"product_version", driver.product_version},
                                                              {"reserved1", driver.reserved1},
                                                              {"reserved2", driver.reserved2}};
  std::vector<std::pair<std::string, std::string>> fields;
  for (const auto& [field, value] : texts) {
    if (!value.empty()) fields.emplace_back(field, value);
  }
  for (const std::string& value : driver.reserved_list) fields.emplace_back("reserved_list", value);
  fields.emplace_back("found_by_device", std::to_string(driver.found_by_device));
  return fields;
}

}  // namespace

Fields FieldsOf(const Orvane::DriverData& driver) {
  Fields fields;
  for (const auto& [field, value] : OrderedFields(driver)) fields[field] += value;
  return fields;
}

std::string Described(const Orvane::DriverData& driver) {
  std::string described;
  for (const auto& [field, value] : OrderedFields(driver)) {
    if (!described.empty()) described += "; ";
    described += field + "=" + value;
  }
  return described;
}

std::vector<std::string> Described(const std::vector<Orvane::DriverData>& drivers) {
  std::vector<std::string> all;
  for (const Orvane::DriverData& driver : drivers) all.push_back(Described(driver));
  return all;
}

}  // namespace test
