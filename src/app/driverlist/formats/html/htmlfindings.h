/// @file
/// The findings at the top of a page.
#pragma once

#include <string>
#include <vector>

#include "formats/html/htmldata.h"
#include "inventory/healthrules.h"
#include "inventory/record.h"

namespace driverlist {

/// The findings, grouped by rule, the most severe first. A rule is one line that opens to its findings, and a finding
/// links to its row. `notes`, sentences without their full stops, are below.
struct FindingsSection {
  FindingsSection(const std::vector<inventory::Finding>& findings, const inventory::Records& records,
                  const std::vector<std::string>& notes);

  std::string html;
  /// A group of rows for each rule, in the same order.
  Facet facet;
};

}  // namespace driverlist
