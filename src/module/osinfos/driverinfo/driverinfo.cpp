#include "driverinfo.h"

#include <utility>

#include "driverinfoImp.h"
#include "versioncompare.h"

namespace Orvane {

DriverData::DriverData() = default;
DriverData::DriverData(const DriverData& other) = default;
DriverData::DriverData(DriverData&& other) noexcept = default;
DriverData& DriverData::operator=(const DriverData& other) = default;
DriverData::~DriverData() = default;

// Moving a string onto itself may empty it, so self-assignment is checked first.
DriverData& DriverData::operator=(DriverData&& other) noexcept {
  if (this == &other) return *this;
  name = std::move(other.name);
  description = std::move(other.description);
  provider = std::move(other.provider);
  path = std::move(other.path);
  file_version = std::move(other.file_version);
  state = std::move(other.state);
  start_type = std::move(other.start_type);
  date = std::move(other.date);
  size = std::move(other.size);
  product_version = std::move(other.product_version);
  reserved1 = std::move(other.reserved1);
  reserved2 = std::move(other.reserved2);
  reserved_list = std::move(other.reserved_list);
  found_by_device = other.found_by_device;
  return *this;
}

bool DriverData::operator==(const DriverData& other) const { return name == other.name; }

bool operator<(const DriverData& a, const DriverData& b) {
  if (a.name != b.name) return a.name < b.name;
  return CompareVersionInLowerCase(a.file_version, b.file_version) < 0;
}

DriverDataPre::DriverDataPre() = default;
DriverDataPre::DriverDataPre(const DriverDataPre& other) = default;
DriverDataPre::DriverDataPre(DriverDataPre&& other) noexcept = default;
DriverDataPre& DriverDataPre::operator=(const DriverDataPre& other) = default;
DriverDataPre::~DriverDataPre() = default;

DriverDataPre& DriverDataPre::operator=(DriverDataPre&& other) noexcept {
  if (this == &other) return *this;
  text1 = std::move(other.text1);
  text2 = std::move(other.text2);
  sort_key = std::move(other.sort_key);
  text4 = std::move(other.text4);
  text5 = std::move(other.text5);
  text6 = std::move(other.text6);
  items = std::move(other.items);
  return *this;
}

DriverDataPreComp& DriverDataPreComp::operator=(const DriverDataPreComp&) { return *this; }

bool DriverDataPreComp::operator()(const DriverDataPre& a, const DriverDataPre& b) const {
  return a.sort_key < b.sort_key;
}

DriverInfo::DriverInfo() : m_imp(new DriverInfoImp) {}

DriverInfo::~DriverInfo() {
  if (m_imp != nullptr && m_imp->RemoveOwner()) delete m_imp;
}

DriverInfo& DriverInfo::operator=(const DriverInfo& other) {
  if (m_imp == other.m_imp) return *this;
  // The former implementation stays allocated by contract: only a destructor frees one.
  m_imp->RemoveOwner();
  m_imp = other.m_imp;
  m_imp->AddOwner();
  return *this;
}

int DriverInfo::list_drivers(std::vector<DriverData>& drivers, const DriverInfoSetType& type) {
  switch (type) {
    case ByDevice:
      return m_imp->ListDeviceDrivers(drivers);
    case Registered:
      return m_imp->ListRegisteredDrivers(drivers);
    case All:
      return m_imp->ListAllDrivers(drivers);
  }
  return 0;
}

int DriverInfo::list_drivers_by_device(std::vector<DriverData>& drivers) { return list_drivers(drivers, ByDevice); }

}  // namespace Orvane
