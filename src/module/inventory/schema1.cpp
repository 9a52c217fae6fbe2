#include "inventory/schema1.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

#include "drivernames.h"
#include "inventory/filenames.h"
#include "inventory/listing.h"
#include "inventory/predicates.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

using Orvane::LowerCase;

constexpr std::array<Schema1Member, 8> Shared = {{{"name", &Record::name},
                                                  {"description", &Record::description},
                                                  {"provider", &Record::provider},
                                                  {"path", &Record::path},
                                                  {"file_version", &Record::version},
                                                  {"state", &Record::state},
                                                  {"start_type", &Record::start_type},
                                                  {"product_version", &Record::product_version}}};

Record Reduced(const Record& record, Kind kind, const std::string& name) {
  Record reduced;
  for (const auto& [unused, member] : Shared) reduced.*member = record.*member;
  reduced.kind = kind;
  reduced.name = name;
  return reduced;
}

/// One record for each name: that of the oldest version.
class OldestByName {
 public:
  void Add(Record record) {
    const auto [found, isNew] = m_records.try_emplace(LowerCase(record.name));
    if (isNew || IsOlder(record.version, found->second.version)) found->second = std::move(record);
  }

  bool Has(const std::string& name) const { return m_records.count(LowerCase(name)) != 0; }

  /// Appends the records for which `isKept` holds.
  template <typename Predicate>
  void MoveTo(Records& records, Predicate isKept) {
    for (auto& [unused, record] : m_records) {
      if (isKept(record)) records.push_back(std::move(record));
    }
  }

 private:
  std::map<std::string, Record> m_records;
};

/// The names under which the library lists a package; empty if its INF lacks something that a record needs.
std::vector<std::string> ListedNames(const Record& package) {
  std::vector<std::string> names;
  if (package.version.empty() || package.provider.empty()) return names;
  std::copy_if(package.files.begin(), package.files.end(), std::back_inserter(names), &IsListedFile);
  if (std::none_of(names.begin(), names.end(), &IsDriverFile)) names.push_back(package.name);
  return names;
}

using PackagesByInf = std::map<std::string, const Record*>;

PackagesByInf ByInf(const Records& records) {
  PackagesByInf packages;
  for (const Record& record : records) {
    if (IsPackage(record)) packages.emplace(LowerCase(record.inf), &record);
  }
  return packages;
}

/// What the library knows of a device with a driver comes from its package.
void AddDevice(const Record& device, const PackagesByInf& packages, OldestByName& devices) {
  const auto found = packages.find(LowerCase(device.inf));
  const Record& source = found == packages.end() ? device : *found->second;
  for (const std::string& name : device.names) devices.Add(Reduced(source, Kind::Device, name));
  if (!IsPackage(source)) return;
  for (const std::string& name : ListedNames(source)) devices.Add(Reduced(source, Kind::Device, name));
}

}  // namespace

const std::array<Schema1Member, 8>& Schema1Members() { return Shared; }

std::optional<Kind> Schema1Kind(std::string_view foundBy, const std::string& name) {
  const std::optional<Kind> kind = KindNamed(foundBy);
  if (kind == Kind::Chipset) return std::nullopt;
  const auto& chipsets = Orvane::ChipsetPackageNames;
  const bool isChipset = std::find(std::begin(chipsets), std::end(chipsets), name) != std::end(chipsets);
  return kind == Kind::Device && isChipset ? Kind::Chipset : kind;
}

Records AsSchema1(const Records& records) {
  Records reduced;
  OldestByName devices;
  OldestByName packages;
  std::multimap<std::string, std::string> serviceVersions;
  const PackagesByInf byInf = ByInf(records);
  for (const Record& record : records) {
    if (IsDevice(record)) {
      AddDevice(record, byInf, devices);
    } else if (IsOemPackage(record)) {
      for (const std::string& name : ListedNames(record)) packages.Add(Reduced(record, Kind::Package, name));
    } else if (!IsPackage(record) && !IsImageMissing(record)) {
      reduced.push_back(Reduced(record, record.kind, record.name));
      if (IsService(record)) serviceVersions.emplace(LowerCase(record.name), record.version);
    }
  }
  const auto isKept = [&](const Record& package) {
    const auto [begin, end] = serviceVersions.equal_range(LowerCase(package.name));
    return !devices.Has(package.name) && std::all_of(begin, end, [&package](const auto& service) {
      return IsOlder(package.version, service.second);
    });
  };
  packages.MoveTo(reduced, isKept);
  devices.MoveTo(reduced, [](const Record&) { return true; });
  return reduced;
}

}  // namespace inventory
