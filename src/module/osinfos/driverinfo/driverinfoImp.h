/// @file
/// The implementation behind DriverInfo.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "devicediscovery.h"
#include "driverinfo.h"
#include "packagefiles.h"
#include "servicedrivers.h"

namespace Orvane {

/// The implementation of DriverInfo. Each collector is a base class with files of its own, yet all operations are
/// members of this class, under whose name they are known and logged. The bases are empty and their operations static:
/// no listing keeps state in the object. State that outlives a call is kept in the collectors' process-wide caches.
class DriverInfoImp : public DeviceDiscovery, public PackageFiles, public ServiceDrivers {
 public:
  /// The combined listing behind DriverInfoSetType::All. Always returns 0.
  ///
  /// Lists devices, services and OEM packages into `drivers`, drops every record whose name a device record also has,
  /// and leaves one record per name, in order; among services and packages, the record with the oldest version. Records
  /// that `drivers` held before are treated like services. Logs each dropped record at level 3.
  static int ListAllDrivers(std::vector<DriverData>& drivers);

  void AddOwner() noexcept { ++m_owners; }
  /// True if the caller was the last owner.
  bool RemoveOwner() noexcept { return --m_owners == 0; }

 private:
  /// Part of the layout of the object. No listing reads or writes them, so they stay empty.
  std::string text1, text2, text3, text4;
  /// DriverInfo objects that refer to this one.
  std::atomic<int> m_owners{1};
};

}  // namespace Orvane
