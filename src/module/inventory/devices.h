/// @file
/// Present devices as the device inventory module reports them, and further facts from Windows about all devices.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace inventory {

/// One present device of the device inventory. Texts are UTF-8; unknown is empty.
struct DeviceFacts {
  std::string instance_id;
  std::string hardware_id;
  std::string description;
  std::string friendly_name;
  std::string manufacturer;
  std::string class_name;
  std::string service;
  /// The parts of its identity, as in PciDeviceRecord.
  std::string vendor_id;
  std::string device_id;
  std::string identity_part3;
  std::string identity_part4;
  /// The installed package: file name of its INF, version, and date as in the driver key ("5-17-2023").
  std::string inf;
  std::string version;
  std::string date;
};

/// Asks the device inventory module (GetPciInfo), in its order.
std::vector<DeviceFacts> ReadPresentDevices();

/// A device of any bus, present or not.
struct DeviceNode {
  std::string instance_id;
  /// File name of the INF it was installed from, and of the INFs that extend it.
  std::vector<std::string> infs;
  std::optional<std::uint64_t> problem_code;
};

/// Asks Windows for all devices. Anything that cannot be read is left out. If the devices cannot be listed, the list is
/// empty and a line is logged at level 2.
std::vector<DeviceNode> ReadDeviceNodes();

}  // namespace inventory
