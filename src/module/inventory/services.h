/// @file
/// Driver services as Windows reports them, and where their images are.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace inventory {

/// One driver service. Texts are UTF-8; unknown is empty.
struct ServiceFacts {
  std::string service;
  /// Image path in its configuration, as the service control manager reports it.
  std::string configured;
  /// The full path of that image: see ImagePath(). `configured` itself if it does not name a file that can be examined.
  std::string path;
  /// Names as in the listing library.
  std::string state;
  std::string start_type;
  /// Whether there is no file at `path`; false if that could not be determined.
  bool image_missing = false;
  /// Creation time of the image, UTC, "2024-05-06T07:08:09Z".
  std::string image_time;
  /// Of the image, in bytes.
  std::optional<std::uint64_t> size;
};

/// All driver services, in the order of the service control manager. Each is opened once; a service whose configuration
/// cannot be read has neither paths nor a start type. If the service control manager cannot be queried, the list is
/// empty and a line is logged at level 2.
std::vector<ServiceFacts> ReadServices();

/// The path of the image of a driver service. `configured` is its configured path: a leading "\??\" is dropped,
/// environment variables are expanded, and a path that is relative or begins with "\SystemRoot\" is below the Windows
/// directory. If `configured` is empty, the image is the service's ".sys" file in the drivers folder. Empty for any
/// other kernel path, which does not name a file that can be examined.
std::wstring ImagePath(const std::wstring& configured, const std::wstring& service,
                       const std::wstring& windowsDirectory);

}  // namespace inventory
