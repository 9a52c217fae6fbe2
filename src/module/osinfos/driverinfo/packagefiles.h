/// @file
/// What files say about drivers: INF packages, the catalogue of OEM packages, the version resource of an image, file
/// times.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "driverinfo.h"

namespace Orvane {

/// Texts of an image's version resource, in the system's ANSI code page; empty where the image has none.
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
  /// SourceDisksFiles sections, those of all processors; a file listed twice gives two. A package that lists no ".sys"
  /// file gives one more record, for itself, under the name under which it was delivered.
  ///
  /// `file_version` is the version part of DriverVer, `provider` is Provider, `description` the name of the disk that a
  /// file is on; where the INF does not describe that disk, its identifier, and the provider for a file that names no
  /// disk. A package without version or provider gives no record. All of it is logged at level 4.
  static void ReadInfPackage(const std::string& infPath, std::vector<DriverData>& drivers);

  /// Appends the records of every "oem*.inf" of the inf directory, in the order of the file system. A directory that
  /// cannot be walked, or not to its end, gives what was found until then.
  static void ScanOemInfCatalogue(std::vector<DriverData>& drivers);

  /// Reads the version resource of the image at `sysFilePath` (full path) into `info`, all four texts of it. On a
  /// platform that does not survive damaged images, one that IsSoundImage() refuses counts as one without.
  ///
  /// The two texts of the string table are looked up under the first translation of the file. A file without
  /// translations is looked up under that of the last file that had one; while there was none, its texts are empty.
  /// Therefore read files from one thread at a time. Logs its beginning and end at level 4, and nothing else.
  static void GetDriveInfoFromSysFile(std::string sysFilePath, SysFileInfo& info);

  /// The function of this name in drivernames.h.
  static void SplitAtSemicolon(const std::string& text, std::string& before, std::string& after);

  /// `fileTime` (UTC) in the machine's time zone, as FormatLocalTime() writes it. Empty, with a line at level 4, for a
  /// time that the run-time library's 64-bit times cannot hold.
  static std::string FileTimeToText(const FILETIME& fileTime);

  /// "MM/DD/YYYY HH:MM:SS"; at exactly midnight "MM/DD/YYYY ", the blank included.
  static std::string FormatLocalTime(const SYSTEMTIME& localTime);
};

/// Sets `originalName` to the name under which the installed INF at `infPath` was delivered. False, with `originalName`
/// as it was, when the Setup API does not tell.
bool GetInfOriginalName(const std::string& infPath, std::string& originalName);

}  // namespace Orvane
