#include "formats/html/relations.h"

#include <set>
#include <string>
#include <unordered_map>

#include "inventory/filenames.h"
#include "inventory/predicates.h"
#include "platform/encoding.h"

namespace driverlist {
namespace {

using inventory::Record;
using inventory::Records;
using Orvane::LowerCase;

/// Indexes of records by a text in lower case.
using Index = std::unordered_map<std::string, std::vector<std::size_t>>;

/// Keeps the first few records that share a text: services can share an image, but in a damaged snapshot every record
/// could refer to every other.
void Add(Index& index, const std::string& text, std::size_t record) {
  constexpr std::size_t most = 16;
  if (text.empty()) return;
  std::vector<std::size_t>& records = index[text];
  if (records.size() < most) records.push_back(record);
}

std::vector<std::size_t> RecordsOf(const Index& index, const std::string& text) {
  const auto found = index.find(text);
  return found == index.end() ? std::vector<std::size_t>() : found->second;
}

class Relations {
 public:
  explicit Relations(const Records& records) : m_records(records), m_related(records.size()) {
    for (std::size_t i = 0; i < records.size(); ++i) {
      if (inventory::IsService(records[i])) Add(m_services, LowerCase(records[i].service), i);
      if (inventory::IsService(records[i])) Add(m_images, inventory::FileKey(records[i].path), i);
      if (inventory::IsPackage(records[i])) Add(m_packages, LowerCase(records[i].inf), i);
    }
  }

  std::vector<std::vector<std::size_t>> Find() {
    for (std::size_t i = 0; i < m_records.size(); ++i) {
      if (inventory::IsDevice(m_records[i])) RelateDevice(i);
      if (inventory::IsPackage(m_records[i])) RelateFiles(i);
    }
    std::vector<std::vector<std::size_t>> related;
    for (const std::set<std::size_t>& others : m_related) related.emplace_back(others.begin(), others.end());
    return related;
  }

 private:
  void Relate(std::size_t a, std::size_t b) {
    m_related[a].insert(b);
    m_related[b].insert(a);
  }

  void RelateDevice(std::size_t device) {
    const std::vector<std::size_t> packages = RecordsOf(m_packages, LowerCase(m_records[device].inf));
    const std::vector<std::size_t> services = RecordsOf(m_services, LowerCase(m_records[device].service));
    for (const std::size_t package : packages) Relate(device, package);
    for (const std::size_t service : services) {
      Relate(device, service);
      for (const std::size_t package : packages) Relate(package, service);
    }
  }

  void RelateFiles(std::size_t package) {
    for (const std::string& file : m_records[package].files) {
      for (const std::size_t service : RecordsOf(m_images, inventory::FileKey(file))) Relate(package, service);
    }
  }

  const Records& m_records;
  Index m_services;
  Index m_images;
  Index m_packages;
  std::vector<std::set<std::size_t>> m_related;
};

}  // namespace

std::vector<std::vector<std::size_t>> Related(const Records& records) { return Relations(records).Find(); }

}  // namespace driverlist
