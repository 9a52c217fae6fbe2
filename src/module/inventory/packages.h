/// @file
/// INF packages.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace inventory {

/// One INF package. Texts are UTF-8; unknown is empty.
struct PackageFacts {
  /// File name of the INF.
  std::string inf;
  /// Name under which it was delivered.
  std::string original_inf;
  std::string provider;
  std::string version;
  /// Date part of DriverVer, as "2024-05-06".
  std::string date;
  std::string class_name;
  /// Name of the disk with the first ".sys" file.
  std::string disk;
  /// Files in its sections (infsections.h), each spelling once: the library lists "net.sys" and "NET.SYS" as two files.
  std::vector<std::string> files;
};

/// Every "oem*.inf" of the inf directory, in the order of their numbers, then the others that `inUse` names (ignoring
/// case) and that exist. Each is opened once; a package that cannot be read has only its name.
std::vector<PackageFacts> ReadPackages(const std::set<std::string>& inUse);

/// "MM/DD/YYYY" or "M-D-YYYY" as "YYYY-MM-DD"; empty for any other text and for a day that does not exist.
std::string IsoDate(const std::string& date);

}  // namespace inventory
