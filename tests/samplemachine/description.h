/// @file
/// A sample machine as its JSON file describes it.
///
///     {
///       "drivers":  [{"file", "size", "created", "file_version", "product_version", "company", "description"}],
///       "services": [{"name", "image_path", "type", "start", "running"}],
///       "packages": [{"inf", "lines"}],
///       "devices":  [{"instance_id", "description", "manufacturer", "class", "hardware_ids", "location", "service",
///                     "package": {"inf", "version", "date"}}],
///       "registry": [{"key", "value", "text"}]
///     }
///
/// Files are relative to the system directory, packages to the inf directory, keys to HKEY_LOCAL_MACHINE. Sizes are in bytes, times
/// in UTC ("2023-05-06T07:08:09"). "type" is "kernel" or "file system"; "start" is "boot", "system", "automatic", "manual" or
/// "disabled". A driver without "file_version" has no version resource, a device without "package" no driver.
#pragma once

#include <string>
#include <vector>

#include "machine.h"

namespace samplemachine {

struct Driver {
  std::string file;
  unsigned long size;
  SYSTEMTIME created;
  bool hasVersion;
  test::VersionSettings version;
};

struct Service {
  std::string name;
  std::string imagePath;
  DWORD type;
  DWORD start;
  bool running;
};

struct Package {
  std::string inf;
  std::vector<std::string> lines;
};

struct RegistryText {
  std::string key;
  std::string value;
  std::string text;
};

struct Description {
  std::vector<Driver> drivers;
  std::vector<Service> services;
  std::vector<Package> packages;
  std::vector<test::DeviceSettings> devices;
  std::vector<RegistryText> registry;
};

/// Reads the file at `path` (UTF-8). Throws std::runtime_error with one sentence that says what is wrong with it.
Description ReadDescription(const std::string& path);

}  // namespace samplemachine
