/// @file
/// Reads the identifiers of a device. Uses no platform API.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Orvane {

/// The parts of a device's identity, as in PciDeviceRecord.
struct DeviceIdentifiers {
  std::string vendor;
  std::string device;
  std::string part3 = "0000";
  std::string part4 = "0000";
};

/// Whether a device instance identifier belongs to the enumerator; case does not count.
bool HasEnumerator(std::string_view instanceId, std::string_view enumerator);

/// Reads a hardware or instance identifier of the enumerators PCI and ACPI, such as
/// "PCI\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03", "ACPI\VEN_INTC&DEV_105E" or "ACPI\INTC105E\2&DABA3FF&0". Nullopt for
/// an identifier of any other form.
std::optional<DeviceIdentifiers> ParseIdentifier(std::string_view identifier);

}  // namespace Orvane
