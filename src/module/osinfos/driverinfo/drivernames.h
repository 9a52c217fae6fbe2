/// @file
/// Rules for the names and paths of drivers. Uses no platform API.
#pragma once

#include <string>
#include <string_view>

namespace Orvane {

struct PciDeviceRecord;

/// `name` up to its first ".inf", whatever its case; if it has none, up to its first ".sys"; otherwise the whole name.
std::string DriverBaseName(const std::string& name);

/// The identity of `device`: `vendor_id`, `device_id`, `identity_part3` and `identity_part4`, joined by "-".
std::string DeviceIdentity(const PciDeviceRecord& device);

/// Name of the record that binds a driver to `device`. `base` is the base name of the driver's file, empty for a device
/// without a driver. Two kinds of Intel platform component have fixed names, whatever `base` is. Otherwise the name is
/// `base`, "_" and the identity, or, if `base` is empty, the identity and "_nodriver#".
std::string DeviceRecordName(const PciDeviceRecord& device, const std::string& base);

/// A platform component that has no driver: the name that DeviceRecordName() gives it and the name under which it is
/// listed.
struct ComponentIdentity {
  std::string_view noDriverName;
  std::string_view name;
};

/// AMD's components, the same on every machine that has them. Of several equal components, only the first is listed
/// under the fixed name.
constexpr ComponentIdentity AmdComponentIdentities[] = {
    {"AMDI-0030-0000-0000_nodriver#", "AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000"},
    {"AMDI-0020-0000-0000_nodriver#", "AMD-VOKTA_AMDUART_0000-0000-0000-0000"},
    {"AMDI-0010-0000-0000_nodriver#", "AMD-VOKTA_AMDI2C_0000-0000-0000-0000"},
    {"DRTM-0002-0000-0000_nodriver#", "AMD-VOKTA_AMDDRTM_0000-0000-0000-0000"}};

/// Names of the records of chipset packages.
constexpr const char* ChipsetPackageNames[] = {"intel_chipset", "amd_chipset", "amd_ppd"};

/// The file name after which the registry key of a driver is named. `configuredPath` is the image path of its service
/// configuration: a path that contains "\??\" loses its first four characters, any other path gives its last component
/// in lower case, and an empty path gives `serviceName` and ".sys". Null pointers count as empty texts.
std::string GetImageFileName(const char* configuredPath, const char* serviceName);

/// The first place to look for an image, according to the form of its registry path.
std::string FirstImagePlace(const std::string& path, const std::string& systemDirectory);

/// "ACPI.sys" for "...\ACPI.SYS": the file name up to its first ".", with the extension of a driver.
std::string ImageRecordName(const std::string& path);

/// Splits `text` at its first ";", which is dropped. If there is no ";", `before` and `after` are both the whole text.
void SplitAtSemicolon(const std::string& text, std::string& before, std::string& after);

}  // namespace Orvane
