/// @file
/// Words of log lines that other code relies on: the progress display recognises them.
#pragma once

#include <string_view>

namespace Orvane::loglines {

/// The whole line when the listing of devices begins.
constexpr std::string_view DevicesBegin = "Start list exist device driver files.";
/// Between the identity of a device and its INF. The line has no other words.
constexpr std::string_view DeviceInf = "|";

/// The whole line when the listing of services begins.
constexpr std::string_view ServicesBegin = "Start to list registered driver files.";
/// Before the name of a service's driver.
constexpr std::string_view DriverName = "DRIVERINFO.name=";
/// Between that name and the version.
constexpr std::string_view DriverVersion = " DRIVERINFO.file_version=";

/// The whole line when the listing of OEM packages begins.
constexpr std::string_view OemPackagesBegin = "Start to list driver files from OemInf.";
/// Before the path of an INF, whichever listing reads it.
constexpr std::string_view PackageInf = "Start to parse ";

}  // namespace Orvane::loglines
