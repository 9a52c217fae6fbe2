/// @file
/// A sample machine as its JSON file describes it.
///
///     {
///       "drivers":  [{"file", "size", "created", "file_version", "product_version", "company", "description",
///                     "image"}],
///       "services": [{"name", "image_path", "type", "start", "running"}],
///       "packages": [{"inf", "lines"}],
///       "devices":  [{"instance_id", "description", "friendly_name", "manufacturer", "class", "hardware_ids",
///                     "location", "service", "package": {"inf", "version", "date", "provider"}, "extensions",
///                     "problem_code"}],
///       "registry": [{"key", "value", "text"}],
///       "roots":    ["..."],
///       "catalogs": ["..."]
///     }
///
/// Texts, names and paths may hold any character.
///
/// - "drivers": "file" is below the system directory, or a full path; "size" is in bytes, "created" in UTC
///   ("2023-05-06T07:08:09"). Without "file_version" it has no version resource. With "image", it is a copy of that
///   file, which is below the folder of the description; then there are no other members but "file" and "created".
/// - "services": "type" is "kernel" or "file system"; "start" is "boot", "system", "automatic", "manual" or "disabled".
///   An empty "image_path" leaves the service without one.
/// - "packages": "inf" is below the inf directory. Lines outside ASCII make it a UTF-16 file.
/// - "devices": without "package" it has no driver; "date" is as Windows keeps it ("5-17-2023"). "extensions" are the
///   INF files that extend it, "problem_code" is what Windows reports of it.
/// - "registry": keys are below HKEY_LOCAL_MACHINE.
/// - "roots" and "catalogs", which may be missing: certificates that the machine trusts, and catalogs that it has;
///   files below the folder of the description.
///
/// Every device is present: Wine knows no other. Where a package is in use but no listed device has it, the device is
/// on another bus than PCI and ACPI.
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
  /// Full path of the file that it is a copy of, or empty.
  std::string image;
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
  /// Full paths.
  std::vector<std::string> roots;
  std::vector<std::string> catalogs;
};

/// Reads the file at `path` (UTF-8). Throws std::runtime_error with one sentence that says what is wrong with it.
Description ReadDescription(const std::string& path);

}  // namespace samplemachine
