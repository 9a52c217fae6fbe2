/// @file
/// The data of a page's script.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "formats/html/summary.h"
#include "formats/table.h"

namespace driverlist {

/// Groups of rows that the reader can filter by. The name is unique on the page.
struct Facet {
  std::string name;
  std::vector<Group> groups;
  /// Whether its bars also show the number of running services.
  bool showsRunning = false;
};

/// All texts are UTF-8, of any origin.
struct PageData {
  /// Everything that is known about each row of the table. Its columns include all columns of the table.
  Table all;
  std::vector<Facet> facets;
  /// For each row, the rows that it refers to and the rows that refer to it; empty if no rows are related.
  std::vector<std::vector<std::size_t>> related;
  /// What opens below a row if that is not the row's own data: lines of label, old value and new value. Several rows
  /// may share an opening.
  std::vector<std::vector<std::array<std::string, 3>>> openings;
  /// For each row, the index of its opening; empty without openings.
  std::vector<std::size_t> openingOfRow;
  /// The word for a row, such as "record".
  std::string thing;
  /// The name of the file that the page saves.
  std::string file;
};

/// The data as an element that runs no code and that no text in it can end. `shown`: the columns of the table.
std::string DataHtml(const PageData& data, const std::vector<inventory::Column>& shown);

}  // namespace driverlist
