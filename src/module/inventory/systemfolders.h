/// @file
/// Where the images of drivers belong.
#pragma once

#include <string>
#include <string_view>

#include "inventory/record.h"

namespace inventory {

/// The folders below which administrators and Windows put images. Asks nothing of Windows, so that snapshots of other
/// machines can be examined: the folder of Windows is the one before "\System32\" in most paths of services, else
/// "Windows" on any drive.
class SystemFolders {
 public:
  explicit SystemFolders(const Records& records);

  /// Whether `path` is in the folder of Windows, in a "Program Files" folder of any drive, or where Windows keeps the
  /// updates of its virus scanner. True for a path without drive, which Windows itself made.
  bool Hold(std::string_view path) const;

 private:
  /// In lower case, with "\" at the end; empty when no path shows it.
  std::string m_windows;
};

}  // namespace inventory
