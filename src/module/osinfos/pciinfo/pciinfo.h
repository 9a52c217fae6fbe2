/// @file
/// Inventory of the PCI and platform devices that are present.
///
/// The library driverinfo.dll calls this module for its device listing. Any module with the same export can stand in its
/// place; records and texts cross the border, so all sides link one C++ run-time library dynamically.
#pragma once

#include <string>
#include <vector>

#if defined(_WIN32) && defined(PCIINFO_EXPORTS)
#define PCIINFO_API __declspec(dllexport)
#elif defined(_WIN32)
#define PCIINFO_API __declspec(dllimport)
#else
#define PCIINFO_API
#endif

namespace Orvane {

/// One device. Texts are narrow strings in the system's ANSI code page, identifiers in the case in which Windows reports
/// them. The order of the members is the layout that all modules share.
struct PciDeviceRecord {
  /// Device description, for people.
  std::string description;
  /// Device identifier, such as "105E".
  std::string device_id;
  std::string text3;
  std::string text4;
  /// Manufacturer.
  std::string provider;
  /// Vendor identifier, such as "8086" or "INTC".
  std::string vendor_id;
  std::string text7;
  /// Third part of the device's identity; "0000" when the device has none.
  std::string identity_part3;
  std::string text9;
  /// Fourth part of the device's identity; "0000" when the device has none.
  std::string identity_part4;
  std::string text11;
  std::string text12;
  std::string text13;
  std::string text14;
  /// Full path of the INF file of the installed driver; empty when no driver is installed.
  std::string inf_name;
  std::vector<std::string> list;
};

}  // namespace Orvane

/// Appends one record per present device to `devices`, which is the caller's. This version reports no device.
extern "C" PCIINFO_API void GetPciInfo(std::vector<Orvane::PciDeviceRecord>& devices);
