/// @file
/// What files say about a driver: the version resource of its image, and file times as text.
#pragma once

#include <windows.h>

#include <string>

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
  /// Reads the version resource of the image at `sysFilePath` (full path) into `info`, all four texts of it.
  ///
  /// The two texts of the string table are looked up under the first translation of the file. A file without translations is
  /// looked up under that of the last file that had one; while there was none, its texts are empty. Therefore read files from
  /// one thread at a time. Logs its beginning and end at level 4, and nothing else.
  static void GetDriveInfoFromSysFile(std::string sysFilePath, SysFileInfo& info);

  /// Splits `text` at its first ";", which is dropped. Without one, both `before` and `after` are the whole text.
  static void SplitAtSemicolon(const std::string& text, std::string& before, std::string& after);

  /// `fileTime` (UTC) in the machine's time zone, as FormatLocalTime() writes it. Empty, with a line at level 4, for a time
  /// that the run-time library's 64-bit times cannot hold.
  static std::string FileTimeToText(const FILETIME& fileTime);

  /// "MM/DD/YYYY HH:MM:SS"; at exactly midnight "MM/DD/YYYY ", the blank included.
  static std::string FormatLocalTime(const SYSTEMTIME& localTime);
};

}  // namespace Orvane
