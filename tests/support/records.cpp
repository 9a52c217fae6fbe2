#include "records.h"

#include <utility>

namespace test {

std::string Described(const Orvane::DriverData& driver) {
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
  std::string described;
  for (const auto& [field, value] : texts) {
    if (!value.empty()) described += std::string(field) + "=" + value + "; ";
  }
  for (const std::string& value : driver.reserved_list) described += "reserved_list=" + value + "; ";
  return described + "found_by_device=" + std::to_string(driver.found_by_device);
}

std::vector<std::string> Described(const std::vector<Orvane::DriverData>& drivers) {
  std::vector<std::string> all;
  for (const Orvane::DriverData& driver : drivers) all.push_back(Described(driver));
  return all;
}

}  // namespace test
