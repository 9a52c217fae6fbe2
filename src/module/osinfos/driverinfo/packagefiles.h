/// @file
/// What files reveal about drivers: INF packages, the catalogue of OEM packages, the version resource of an image, file
/// times.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "driverinfo.h"

namespace Orvane {

/// Texts of an image's version resource, in the system's ANSI code page. A text that the image does not have is empty.
struct SysFileInfo {
  /// FileDescription of the first translation.
  std::string description;
  /// CompanyName of the first translation.
  std::string company;
  /// File version of the fixed block, four decimal numbers joined by ".".
  std::string file_version;
  /// Product version of the fixed block, in the same form.
  std::string product_version;
};

/// Readers of driver packages and images.
struct PackageFiles {
  /// Appends a record for each ".sys" and ".inf" file that the INF at `infPath` (full path) lists in its
  /// SourceDisksFiles sections, for all processors; a file listed twice gives two records. A package that lists no
  /// ".sys" file gives one more record, for the package itself, under the name under which it was delivered.
  ///
  /// `file_version` is the version part of DriverVer, `provider` is Provider, `description` the name of the disk that
  /// the file is on. If the INF does not describe that disk, `description` is the identifier of the disk; if the file
  /// names no disk, it is the provider. A package without version or provider gives no record. Everything is logged at
  /// level 4.
  static void ReadInfPackage(const std::string& infPath, std::vector<DriverData>& drivers);

  /// Appends the records of every "oem*.inf" of the inf directory, in the order of the file system. If the directory
  /// cannot be walked to its end, the records found until then stay.
  static void ScanOemInfCatalogue(std::vector<DriverData>& drivers);

  /// Reads the version resource of the image at `sysFilePath` (full path) into all four texts of `info`. On a platform
  /// that does not survive damaged images, an image that IsSoundImage() rejects counts as one without a version
  /// resource.
  ///
  /// The two texts of the string table are looked up under the first translation of the file. A file without
  /// translations is looked up under the translation of the last file that had one; if no file had one yet, its texts
  /// are empty. Therefore read files from one thread at a time. Logs only its beginning and end, at level 4.
  static void GetDriveInfoFromSysFile(std::string sysFilePath, SysFileInfo& info);

  /// Calls the function of the same name in drivernames.h.
  static void SplitAtSemicolon(const std::string& text, std::string& before, std::string& after);

  /// `fileTime` (UTC) in the machine's time zone, as FormatLocalTime() writes it. For a time that the run-time
  /// library's 64-bit times cannot represent, logs a line at level 4 and returns an empty text.
  static std::string FileTimeToText(const FILETIME& fileTime);

  /// "MM/DD/YYYY HH:MM:SS"; at exactly midnight "MM/DD/YYYY ", including the blank.
  static std::string FormatLocalTime(const SYSTEMTIME& localTime);
};

/// Sets `originalName` to the name under which the installed INF at `infPath` was delivered. Returns false and leaves
/// `originalName` unchanged if the Setup API does not know it.
bool GetInfOriginalName(const std::string& infPath, std::string& originalName);

}  // namespace Orvane
