/// @file
/// What the names and paths of drivers say. Needs nothing of the platform.
#pragma once

#include <string>

namespace Orvane {

struct PciDeviceRecord;

/// `name` up to its first ".inf", in any case; without one, up to its first ".sys"; else the whole of it.
std::string DriverBaseName(const std::string& name);

/// What tells `device` from others: `vendor_id`, `device_id`, `identity_part3` and `identity_part4`, joined by "-".
std::string DeviceIdentity(const PciDeviceRecord& device);

/// Name of the record that binds a driver to `device`. `base` is the base name of the driver's file, empty for a device
/// without driver. Two kinds of Intel platform component have fixed names, whatever `base` is; else it is `base`, "_" and the
/// identity, or the identity and "_nodriver#" without `base`.
std::string DeviceRecordName(const PciDeviceRecord& device, const std::string& base);

/// File name that names the registry key of a driver. `configuredPath` is the image path of its service configuration: one
/// that holds "\??\" loses its first four characters, any other gives its last component in lower case, an empty one gives
/// `serviceName` and ".sys". Null pointers are empty texts.
std::string GetImageFileName(const char* configuredPath, const char* serviceName);

/// The first place to look for an image, by the form of its registry path.
std::string FirstImagePlace(const std::string& path, const std::string& systemDirectory);

/// "ACPI.sys" for "...\ACPI.SYS": the file name up to its first ".", with the extension of a driver.
std::string ImageRecordName(const std::string& path);

/// Splits `text` at its first ";", which is dropped. Without one, both `before` and `after` are the whole text.
void SplitAtSemicolon(const std::string& text, std::string& before, std::string& after);

}  // namespace Orvane
