#include "inventory/join.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "drivernames.h"
#include "inventory/filenames.h"
#include "inventory/predicates.h"
#include "pciinfo.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

using Orvane::LowerCase;

/// Like the library, this takes a slash for part of a name.
std::string LastComponent(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

// --- Services

/// The services that the library lists, to be looked up by path.
class ListedServices {
 public:
  explicit ListedServices(const std::vector<ListedDriver>& listed) {
    for (const ListedDriver& driver : listed) {
      // Chipset packages are listed among them and have no image.
      if (!driver.path.empty()) m_byPath.emplace(LowerCase(driver.path), &driver);
    }
  }

  /// The service whose image is at `path`; null if there is no such service.
  const ListedDriver* At(const std::string& path) const {
    const auto found = m_byPath.find(LowerCase(path));
    return found == m_byPath.end() ? nullptr : found->second;
  }

 private:
  std::map<std::string, const ListedDriver*> m_byPath;
};

/// The file name under which the library looks for the image of `service`, without extension and in lower case.
std::string LookedUpStem(const ServiceFacts& service) {
  const std::string file = Orvane::GetImageFileName(service.configured.c_str(), service.service.c_str());
  return LowerCase(LastComponent(file.substr(0, file.rfind('.'))));
}

Record ServiceRecord(const ServiceFacts& facts, const ListedServices& listed,
                     const std::function<ImageTexts(const std::string& path)>& readImage) {
  Record record;
  record.kind = Kind::Service;
  record.service = facts.service;
  record.path = facts.path;
  record.state = facts.state;
  record.start_type = facts.start_type;
  record.image_missing = facts.image_missing;
  record.image_time = facts.image_time;
  record.size = facts.size;
  record.name = Orvane::ImageRecordName(facts.path.empty() ? facts.service + ".sys" : facts.path);
  if (const ListedDriver* const driver = listed.At(facts.path)) {
    record.name = driver->name;
    record.description = driver->description;
    record.provider = driver->provider;
    record.version = driver->file_version;
    record.product_version = driver->product_version;
  } else if (facts.size) {
    ImageTexts texts = readImage(facts.path);
    record.description = std::move(texts.description);
    record.provider = std::move(texts.company);
    record.version = texts.file_version.substr(0, texts.file_version.find(' '));
    record.product_version = std::move(texts.product_version);
  }
  return record;
}

/// How well `driver` fits `service`, if the library does not list the service's own image: by the name that the library
/// looked for, and by the state of the service.
int Fitness(const ListedDriver& driver, const ServiceFacts& service) {
  const std::string file = LastComponent(driver.path);
  const bool hasStem = LookedUpStem(service) == LowerCase(file.substr(0, file.rfind('.')));
  const bool hasState = service.state == driver.state && service.start_type == driver.start_type;
  return (hasStem ? 2 : 0) + (hasState ? 1 : 0);
}

/// The library lists a service under the file that it found, whose name may differ from that of the service's own
/// image. Such a name goes to the best fit among the services whose own image is not listed.
void KeepListedNames(const Facts& facts, const ListedServices& listed, std::vector<Record>& services) {
  std::set<std::string> names;
  std::vector<std::size_t> unlisted;
  for (std::size_t i = 0; i < services.size(); ++i) {
    names.insert(services[i].name);
    if (listed.At(facts.services[i].path) == nullptr) unlisted.push_back(i);
  }
  for (const ListedDriver& driver : facts.listedServices) {
    if (unlisted.empty()) return;
    if (driver.path.empty() || !names.insert(driver.name).second) continue;
    const auto best = std::max_element(unlisted.begin(), unlisted.end(), [&](std::size_t a, std::size_t b) {
      return Fitness(driver, facts.services[a]) < Fitness(driver, facts.services[b]);
    });
    services[*best].name = driver.name;
    unlisted.erase(best);
  }
}

// --- Packages

using PackagesByInf = std::map<std::string, const PackageFacts*>;

PackagesByInf ByInf(const std::vector<PackageFacts>& packages) {
  PackagesByInf byInf;
  for (const PackageFacts& package : packages) byInf.emplace(LowerCase(package.inf), &package);
  return byInf;
}

Record PackageRecord(const PackageFacts& facts, const std::map<std::string, std::uint64_t>& users) {
  Record record;
  record.kind = Kind::Package;
  const auto driver = std::find_if(facts.files.begin(), facts.files.end(), &IsDriverFile);
  record.name = driver != facts.files.end() ? *driver : facts.original_inf;
  if (record.name.empty()) record.name = facts.inf;
  record.description = facts.disk.empty() ? facts.provider : facts.disk;
  record.provider = facts.provider;
  record.version = facts.version;
  record.inf = facts.inf;
  record.original_inf = facts.original_inf;
  record.inf_date = facts.date;
  record.class_name = facts.class_name;
  record.files = facts.files;
  const auto count = users.find(LowerCase(facts.inf));
  record.devices_using = count == users.end() ? 0 : count->second;
  return record;
}

/// How many devices use each INF; keys are INF names in lower case.
std::map<std::string, std::uint64_t> UsersByInf(const std::vector<DeviceNode>& nodes) {
  std::map<std::string, std::uint64_t> users;
  for (const DeviceNode& node : nodes) {
    std::set<std::string> infs;
    for (const std::string& inf : node.infs) infs.insert(LowerCase(inf));
    for (const std::string& inf : infs) ++users[inf];
  }
  return users;
}

// --- Devices

/// The members of the PCI record from which names are made.
Orvane::PciDeviceRecord Identified(const DeviceFacts& facts) {
  Orvane::PciDeviceRecord device;
  device.vendor_id = facts.vendor_id;
  device.device_id = facts.device_id;
  device.identity_part3 = facts.identity_part3;
  device.identity_part4 = facts.identity_part4;
  return device;
}

/// The names under which the library lists devices. A fixed name is given only once.
class ListedNames {
 public:
  explicit ListedNames(const std::vector<ListedDriver>& listed) {
    for (const ListedDriver& driver : listed) m_names.insert(driver.name);
  }

  /// Appends `name` to `names` where the library lists it.
  void Append(const std::string& name, std::vector<std::string>& names) const {
    if (m_names.count(name) != 0 && std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }

  /// The name of a device without a driver that would otherwise be called `name`: of several such components, the
  /// library lists the first under a fixed name.
  std::string NoDriverName(const std::string& name) {
    for (const Orvane::ComponentIdentity& component : Orvane::AmdComponentIdentities) {
      if (name == component.noDriverName && m_fixed.insert(name).second) return std::string(component.name);
    }
    return name;
  }

 private:
  std::set<std::string> m_names;
  std::set<std::string> m_fixed;
};

/// The listed names that can be made of `device` and its package.
std::vector<std::string> Names(const Orvane::PciDeviceRecord& device, const std::string& inf,
                               const PackagesByInf& packages, ListedNames& listed) {
  std::vector<std::string> names;
  if (inf.empty()) {
    listed.Append(listed.NoDriverName(Orvane::DeviceRecordName(device, std::string())), names);
    return names;
  }
  const auto package = packages.find(LowerCase(inf));
  if (package == packages.end()) return names;
  std::vector<std::string> files = package->second->files;
  files.push_back(package->second->original_inf);
  // Where the original name is unknown, some platforms use the name of the INF itself, as the device spells it.
  files.push_back(inf);
  for (const std::string& file : files) {
    const std::string base = Orvane::DriverBaseName(file);
    if (IsListedFile(file) && !base.empty()) listed.Append(Orvane::DeviceRecordName(device, base), names);
  }
  return names;
}

Record DeviceRecord(const DeviceFacts& facts, const PackagesByInf& packages, ListedNames& listed) {
  Record record;
  record.kind = Kind::Device;
  record.instance_id = facts.instance_id;
  record.hardware_id = facts.hardware_id;
  record.description = facts.friendly_name.empty() ? facts.description : facts.friendly_name;
  record.class_name = facts.class_name;
  record.service = facts.service;
  record.inf = facts.inf;
  if (!HasNoDriver(record)) {
    record.version = facts.version;
    record.inf_date = IsoDate(facts.date);
  }
  const auto package = packages.find(LowerCase(record.inf));
  const bool hasProvider = package != packages.end() && !package->second->provider.empty();
  record.provider = hasProvider ? package->second->provider : facts.manufacturer;
  const Orvane::PciDeviceRecord identified = Identified(facts);
  record.identity = Orvane::DeviceIdentity(identified);
  record.names = Names(identified, record.inf, packages, listed);
  record.name = record.names.empty() ? record.identity : record.names.front();
  return record;
}

void SetProblems(const std::vector<DeviceNode>& nodes, std::vector<Record>& devices) {
  std::map<std::string, std::uint64_t> problems;
  for (const DeviceNode& node : nodes) {
    if (node.problem_code) problems.emplace(LowerCase(node.instance_id), *node.problem_code);
  }
  for (Record& device : devices) {
    const auto problem = problems.find(LowerCase(device.instance_id));
    if (problem != problems.end()) device.problem_code = problem->second;
  }
}

// --- Chipset packages

std::vector<Record> ChipsetRecords(const std::vector<ListedDriver>& listedDevices) {
  std::vector<Record> chipsets;
  for (const ListedDriver& driver : listedDevices) {
    const auto& names = Orvane::ChipsetPackageNames;
    if (std::find(std::begin(names), std::end(names), driver.name) == std::end(names)) continue;
    Record record;
    record.kind = Kind::Chipset;
    record.name = driver.name;
    record.description = driver.description;
    record.provider = driver.provider;
    record.version = driver.file_version;
    chipsets.push_back(std::move(record));
  }
  return chipsets;
}

void SortAndAppend(std::vector<Record> kind, Records& records) {
  std::vector<std::pair<std::string, Record*>> keyed;
  for (Record& record : kind) keyed.emplace_back(KeyOf(record), &record);
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (auto& [key, record] : keyed) records.push_back(std::move(*record));
}

}  // namespace

Records Join(const Facts& facts, const std::function<ImageTexts(const std::string& path)>& readImage) {
  const ListedServices listedServices(facts.listedServices);
  std::vector<Record> services;
  for (const ServiceFacts& service : facts.services) {
    services.push_back(ServiceRecord(service, listedServices, readImage));
  }
  KeepListedNames(facts, listedServices, services);

  const PackagesByInf byInf = ByInf(facts.packages);
  ListedNames listedNames(facts.listedDevices);
  std::vector<Record> devices;
  for (const DeviceFacts& device : facts.devices) devices.push_back(DeviceRecord(device, byInf, listedNames));
  SetProblems(facts.nodes, devices);

  const auto users = UsersByInf(facts.nodes);
  std::vector<Record> packages;
  for (const PackageFacts& package : facts.packages) packages.push_back(PackageRecord(package, users));

  Records records;
  SortAndAppend(std::move(services), records);
  SortAndAppend(std::move(devices), records);
  SortAndAppend(std::move(packages), records);
  SortAndAppend(ChipsetRecords(facts.listedDevices), records);
  return records;
}

}  // namespace inventory
