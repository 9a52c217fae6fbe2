/// @file
/// Inventory of the PCI and platform devices that are present.
///
/// The library driverinfo.dll calls this module for its device listing. Any module with the same export can replace it.
/// Records and texts cross the module border, so all sides must link the same C++ run-time library dynamically.
#pragma once

#include <string>
#include <vector>

#if defined(_WIN32) && defined(PCIINFO_EXPORTS)
#define PCIINFO_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(ORVANE_LINKED_IN)
#define PCIINFO_API __declspec(dllimport)
#else
#define PCIINFO_API
#endif

namespace Orvane {

/// One device. Texts are narrow strings in the system's ANSI code page; identifiers keep the case in which Windows
/// reports them. An unknown text is empty unless a field says otherwise. All modules share this layout, so the order of
/// the members is fixed. The device listing of driverinfo.dll reads only the members with a descriptive name.
struct PciDeviceRecord {
  /// Device description, for people.
  std::string description;
  /// Device identifier, such as "15F3" (PCI) or "105E" (platform); "0000" for a platform device without one.
  std::string device_id;
  /// The most specific hardware identifier, such as "PCI\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03".
  std::string text3;
  /// Device instance identifier.
  std::string text4;
  /// Manufacturer.
  std::string provider;
  /// Vendor identifier, such as "8086" (PCI) or "INTC" (platform).
  std::string vendor_id;
  /// Setup class, such as "Net".
  std::string text7;
  /// Subsystem vendor of a PCI device, such as "1028"; "0000" if it has none, as for every platform device.
  std::string identity_part3;
  /// Location of the device, such as "PCI bus 0, device 31, function 6".
  std::string text9;
  /// Subsystem device of a PCI device, such as "0A5C"; "0000" if it has none, as for every platform device.
  std::string identity_part4;
  /// Service that drives the device.
  std::string text11;
  /// Version of the installed driver package.
  std::string text12;
  /// Date of the installed driver package.
  std::string text13;
  /// Friendly name, given to the device by its driver.
  std::string text14;
  /// Full path of the INF file of the installed driver package; empty when no driver is installed.
  std::string inf_name;
  /// All hardware identifiers, the most specific first.
  std::vector<std::string> list;
};

}  // namespace Orvane

/// Appends one record per present device of the enumerators PCI and ACPI to `devices`, which the caller owns, in the
/// order in which the Setup API enumerates them. Everything is read from the device node and its driver key; the
/// function never asks Windows to search for matching drivers. A device that cannot be read is left out and logged at
/// level 2. Throws only std::bad_alloc.
extern "C" PCIINFO_API void GetPciInfo(std::vector<Orvane::PciDeviceRecord>& devices);
