/// @file
/// Where the images of drivers belong.
#pragma once

#include <string>
#include <string_view>

#include "inventory/record.h"

namespace inventory {

/// The folders where administrators and Windows install images. Makes no Windows calls, so it can examine snapshots of
/// other machines: the Windows folder is the folder before "\System32\" in most service paths, otherwise "Windows" on
/// any drive.
class SystemFolders {
 public:
  explicit SystemFolders(const Records& records);

  /// Whether `path` is in the Windows folder, in a "Program Files" folder on any drive, or in the folder of updates for
  /// the Windows virus scanner. True for a path without a drive, which only Windows itself makes.
  bool Hold(std::string_view path) const;

 private:
  /// In lower case, with "\" at the end; empty if no path contains it.
  std::string m_windows;
};

}  // namespace inventory
