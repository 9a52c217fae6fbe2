/// @file
/// What stands behind DriverInfo.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "devicediscovery.h"
#include "driverinfo.h"
#include "packagefiles.h"
#include "servicedrivers.h"

namespace Orvane {

/// The implementation of DriverInfo: the collectors are its bases, the merge of what they find is its own.
/// No listing keeps state in the object; what survives a call lives in the collectors' process-wide caches.
class DriverInfoImp : public DeviceDiscovery, public PackageFiles, public ServiceDrivers {
 public:
  /// The combined listing behind DriverInfoSetType::All. Always returns 0.
  ///
  /// Lists devices, services and OEM packages into `drivers`, drops what a device record has the name of, and leaves
  /// one record per name, in order; among services and packages the one with the oldest version. What `drivers` held
  /// before takes part like a service. Logs what a device record shadows at level 3.
  static int ListAllDrivers(std::vector<DriverData>& drivers);

  void AddOwner() noexcept { ++m_owners; }
  /// True when the caller was the last owner.
  bool RemoveOwner() noexcept { return --m_owners == 0; }

 private:
  /// Part of the object; no listing reads or writes them.
  std::string text1, text2, text3, text4;
  /// DriverInfo objects that refer to this one.
  std::atomic<int> m_owners{1};
};

}  // namespace Orvane
