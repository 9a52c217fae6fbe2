/// @file
/// What the names and paths of drivers say. Needs nothing of the platform.
#pragma once

#include <string>
#include <string_view>

namespace Orvane {

struct PciDeviceRecord;

/// `name` up to its first ".inf", in any case; without one, up to its first ".sys"; else the whole of it.
std::string DriverBaseName(const std::string& name);

/// What tells `device` from others: `vendor_id`, `device_id`, `identity_part3` and `identity_part4`, joined by "-".
std::string DeviceIdentity(const PciDeviceRecord& device);

/// Name of the record that binds a driver to `device`. `base` is the base name of the driver's file, empty for a device
/// without driver. Two kinds of Intel platform component have fixed names, whatever `base` is; else it is `base`, "_"
/// and the identity, or the identity and "_nodriver#" without `base`.
std::string DeviceRecordName(const PciDeviceRecord& device, const std::string& base);

/// A platform component that has no driver: the name that DeviceRecordName() gives it, and the one under which it is
/// listed.
struct ComponentIdentity {
  std::string_view noDriverName;
  std::string_view name;
};

/// AMD's, the same on every machine that has them. Of several equal components, the first is listed under the fixed
/// name.
constexpr ComponentIdentity AmdComponentIdentities[] = {
    {"AMDI-0030-0000-0000_nodriver#", "AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000"},
    {"AMDI-0020-0000-0000_nodriver#", "AMD-VOKTA_AMDUART_0000-0000-0000-0000"},
    {"AMDI-0010-0000-0000_nodriver#", "AMD-VOKTA_AMDI2C_0000-0000-0000-0000"},
    {"DRTM-0002-0000-0000_nodriver#", "AMD-VOKTA_AMDDRTM_0000-0000-0000-0000"}};

/// Names of the records of chipset packages.
constexpr const char* ChipsetPackageNames[] = {"intel_chipset", "amd_chipset", "amd_ppd"};

/// File name that names the registry key of a driver. `configuredPath` is the image path of its service configuration:
/// one that holds "\??\" loses its first four characters, any other gives its last component in lower case, an empty
/// one gives `serviceName` and ".sys". Null pointers are empty texts.
std::string GetImageFileName(const char* configuredPath, const char* serviceName);

/// The first place to look for an image, by the form of its registry path.
std::string FirstImagePlace(const std::string& path, const std::string& systemDirectory);

/// "ACPI.sys" for "...\ACPI.SYS": the file name up to its first ".", with the extension of a driver.
std::string ImageRecordName(const std::string& path);

/// Splits `text` at its first ";", which is dropped. Without one, both `before` and `after` are the whole text.
void SplitAtSemicolon(const std::string& text, std::string& before, std::string& after);

}  // namespace Orvane
