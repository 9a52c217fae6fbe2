/// @file
/// What the rules of `health` look at.
#pragma once

#include <string>
#include <vector>

#include "driverinfo.h"

namespace driverlist {

/// A driver service whose configured image is not there. Texts are UTF-8.
struct MissingImage {
  std::string service;
  /// As the service control manager tells it; empty when none is configured.
  std::string configured;
  /// The path that this means.
  std::string path;
};

/// An OEM package of the inf directory. Texts are UTF-8.
struct OemPackage {
  /// Such as "oem12.inf".
  std::string inf;
  /// Version part of DriverVer.
  std::string version;
  std::string provider;
  /// ".sys" files that it lists for any processor, each once.
  std::vector<std::string> drivers;
};

/// One machine at one time. Texts are UTF-8.
struct MachineFacts {
  /// The library's listing of devices, and its listing of services without the chipset packages.
  std::vector<Orvane::DriverData> devices;
  std::vector<Orvane::DriverData> services;
  /// The library leaves such services out, or finds another image for them.
  std::vector<MissingImage> missingImages;
  /// In the order of their numbers. The library lists their files, but not which package they are of.
  std::vector<OemPackage> packages;
  /// INF files that devices were installed from or are extended by, present or not, in lower case.
  std::vector<std::string> infsInUse;
};

/// Asks this machine. What cannot be read is left out.
MachineFacts CollectFacts();

/// Where the image of a driver service is, for its configured path: `configured` below the Windows directory when it is
/// relative or begins with "\SystemRoot\", without a leading "\??\", environment variables expanded; without one, the service's
/// ".sys" in the folder of drivers. Empty for another kernel path, which names no file that could be looked at.
std::wstring ImagePath(const std::wstring& configured, const std::wstring& service,
                       const std::wstring& windowsDirectory);

}  // namespace driverlist
