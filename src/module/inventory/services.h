/// @file
/// Driver services as Windows knows them, and where their images are.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace inventory {

/// One driver service. Texts are UTF-8; unknown is empty.
struct ServiceFacts {
  std::string service;
  /// Image path of its configuration, as the service control manager gives it.
  std::string configured;
  /// Full path that it means: see ImagePath(). `configured` itself where it names no file that could be looked at.
  std::string path;
  /// Names as the listing library gives them.
  std::string state;
  std::string start_type;
  /// Whether there is no file at `path`; false where nobody could look.
  bool image_missing = false;
  /// Creation time of the image, UTC, "2024-05-06T07:08:09Z".
  std::string image_time;
  /// Of the image, in bytes.
  std::optional<std::uint64_t> size;
};

/// All driver services, in the order of the service control manager. Each is opened once; one whose configuration
/// cannot be read has neither paths nor a start type. The list is empty, with a line at level 2 of the log, when the
/// service control manager cannot be asked.
std::vector<ServiceFacts> ReadServices();

/// Where the image of a driver service is, for its configured path: `configured` below the Windows directory when it is
/// relative or begins with "\SystemRoot\", without a leading "\??\", environment variables expanded; without one, the
/// service's ".sys" in the folder of drivers. Empty for another kernel path, which names no file that could be looked
/// at.
std::wstring ImagePath(const std::wstring& configured, const std::wstring& service,
                       const std::wstring& windowsDirectory);

}  // namespace inventory
