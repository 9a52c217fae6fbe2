/// @file
/// Present devices as the device inventory module reports them, and what Windows adds about any device.
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
  /// Of the installed package: file name of its INF, version, and date as the driver key has it ("5-17-2023").
  std::string inf;
  std::string version;
  std::string date;
};

/// Asks the device inventory module (GetPciInfo), in its order.
std::vector<DeviceFacts> ReadPresentDevices();

/// A device of any bus, present or not.
struct DeviceNode {
  std::string instance_id;
  /// File name of the INF it was installed from, and of those that extend it.
  std::vector<std::string> infs;
  std::optional<std::uint64_t> problem_code;
};

/// Asks Windows for all devices. What cannot be read is left out; the list is empty, with a line at level 2 of the log,
/// when the devices cannot be listed.
std::vector<DeviceNode> ReadDeviceNodes();

}  // namespace inventory
