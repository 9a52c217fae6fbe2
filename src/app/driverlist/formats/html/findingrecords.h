/// @file
/// Finds the records on a page that a finding is about.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "inventory/healthrules.h"
#include "inventory/record.h"

namespace driverlist {

/// Finds records by the subjects of findings. The findings may come from an inventory with more records.
class FindingRecords {
 public:
  explicit FindingRecords(const inventory::Records& records);

  /// The indexes of the records, in their order; empty if the finding is about none of them.
  std::vector<std::size_t> Of(const inventory::Finding& finding) const;

 private:
  using Index = std::unordered_map<std::string, std::vector<std::size_t>>;

  /// Services by service name, devices by name, packages by INF.
  Index m_bySubject;
  /// Services by image, OEM packages by file; file names are in lower case.
  Index m_byFile;
};

}  // namespace driverlist
