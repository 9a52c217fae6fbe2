#include "formats/html/findingrecords.h"

#include <set>

#include "inventory/filenames.h"
#include "inventory/predicates.h"

namespace driverlist {
namespace {

using inventory::Record;

/// The subject of findings about the record.
const std::string& SubjectOf(const Record& record) {
  if (inventory::IsService(record)) return record.service;
  return inventory::IsPackage(record) ? record.inf : record.name;
}

/// The files that are subjects of findings about several versions, in lower case.
std::set<std::string> FilesOf(const Record& record) {
  std::set<std::string> files;
  if (inventory::IsService(record)) files.insert(inventory::FileKey(record.path));
  if (inventory::IsOemPackage(record)) {
    for (const std::string& file : record.files) files.insert(inventory::FileKey(file));
  }
  return files;
}

}  // namespace

FindingRecords::FindingRecords(const inventory::Records& records) {
  for (std::size_t i = 0; i < records.size(); ++i) {
    m_bySubject[SubjectOf(records[i])].push_back(i);
    for (const std::string& file : FilesOf(records[i])) m_byFile[file].push_back(i);
  }
}

std::vector<std::size_t> FindingRecords::Of(const inventory::Finding& finding) const {
  for (const Index* const index : {&m_bySubject, &m_byFile}) {
    const auto found = index->find(finding.subject);
    if (found != index->end()) return found->second;
  }
  return {};
}

}  // namespace driverlist
